#pragma once

#include "pane/views/PaneContext.h"

#include <QString>
#include <QWidget>

#include <functional>

class QToolButton;

namespace torka {

// A group of fields under a header that opens and closes it. What is inside is made when it first opens.
class RollDown final : public QWidget {
public:
    // `fill` makes the content; called once, with the content's parent, which it gives a layout.
    RollDown(const PaneContext& context, const QString& title, std::function<void(QWidget&)> fillContent,
             QWidget* parent);

    bool IsOpen() const { return open; }
    void SetOpen(bool nowOpen);
    QToolButton* Header() const { return header; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void TellState(); // to assistive technology

    QToolButton* header;
    QWidget* content = nullptr;
    std::function<void(QWidget&)> fill;
    QString openWord;
    QString closedWord;
    bool open = false;
};

} // namespace torka
