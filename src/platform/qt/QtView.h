#pragma once

#include "platform/PrintDialogExtension.h"

#include <QPointer>
#include <QWidget>

namespace torka::platform {

// A view that is a widget. Refers to it only: the widget belongs to its parent once a dialog has put it in,
// before that to the view, which deletes it.
class QtView final : public View {
public:
    explicit QtView(QWidget* viewWidget)
        : widget(viewWidget) {}
    ~QtView() override;
    // Null once the widget is gone.
    QWidget* Widget() const { return widget; }

private:
    QPointer<QWidget> widget;
};

// The widget of a view of this adapter; null for null and for views of others.
QWidget* widgetOf(const ViewRef& view);

} // namespace torka::platform
