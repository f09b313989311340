#pragma once

#include <QWidget>

#include <functional>

namespace torka {

// The pane's root view. Tells when it is first painted, and when it goes: the dialog owns it once it has put
// it in, and may delete it before or after the panel.
class PaneRoot final : public QWidget {
public:
    PaneRoot() = default;
    ~PaneRoot() override;
    void WhenFirstPainted(std::function<void()> action) { firstPainted = std::move(action); }
    void WhenGone(std::function<void()> action) { gone = std::move(action); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::function<void()> firstPainted;
    std::function<void()> gone;
};

} // namespace torka
