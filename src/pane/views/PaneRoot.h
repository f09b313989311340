// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QTimer>
#include <QWidget>

#include <functional>

namespace torka {

// The root view of the pane. It tells when it is first painted and when it ends. The dialog owns it after
// embedding it, and may delete it before or after the panel ends.
// Its palette makes quiet and disabled texts dark enough to be read.
class PaneRoot final : public QWidget {
public:
    PaneRoot();
    ~PaneRoot() override;
    void WhenFirstPainted(std::function<void()> action) { firstPainted = std::move(action); }
    void WhenGone(std::function<void()> action) { gone = std::move(action); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void TakePalette();

    std::function<void()> firstPainted;
    QTimer painted; // leaves the paint event before the action
    std::function<void()> gone;
};

} // namespace torka
