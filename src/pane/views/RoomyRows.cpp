// SPDX-License-Identifier: Apache-2.0
#include "pane/views/RoomyRows.h"

#include <algorithm>

namespace torka {

QSize RoomyRows::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    const int text = option.fontMetrics.height();
    size.setHeight(std::clamp(limit, text, RoomyHeight(option.fontMetrics)));
    return size;
}

void RoomyRows::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    option->decorationPosition = QStyleOptionViewItem::Right;
}

} // namespace torka
