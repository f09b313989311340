// SPDX-License-Identifier: Apache-2.0
#include "pane/views/RoomyRows.h"

namespace torka {

QSize RoomyRows::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    size.setHeight(Height(option.fontMetrics));
    return size;
}

void RoomyRows::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    option->decorationPosition = QStyleOptionViewItem::Right;
}

} // namespace torka
