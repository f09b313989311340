// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/PrintDialogExtension.h"

#include <QPointer>
#include <QWidget>

namespace torka::platform {

// A view that is a widget. Owns the widget and deletes it until a dialog gives the widget a parent; then the
// parent owns it.
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

// The widget of a view of this adapter; null for null and for views of other adapters.
QWidget* widgetOf(const ViewRef& view);

} // namespace torka::platform
