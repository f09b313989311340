// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QWidget>

namespace torka {

// Puts what keys reach within `within` behind `before`, in its present order. Returns the last widget. Qt
// itself puts a widget that is made later behind all others of its window.
inline QWidget* chainInTabOrder(QWidget* before, const QWidget& within) {
    for (QWidget* widget : within.findChildren<QWidget*>()) {
        if (widget->focusPolicy() != Qt::NoFocus && widget->focusProxy() == nullptr) {
            if (before != nullptr) {
                QWidget::setTabOrder(before, widget);
            }
            before = widget;
        }
    }
    return before;
}

} // namespace torka
