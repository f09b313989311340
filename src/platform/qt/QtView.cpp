// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/QtView.h"

namespace torka::platform {

QtView::~QtView() {
    if (widget != nullptr && widget->parent() == nullptr) {
        delete widget;
    }
}

QWidget* widgetOf(const ViewRef& view) {
    const auto* qtView = dynamic_cast<const QtView*>(view.get());
    return qtView == nullptr ? nullptr : qtView->Widget();
}

} // namespace torka::platform
