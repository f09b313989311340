// SPDX-License-Identifier: Apache-2.0
#include "pane/views/RoomyRows.h"

namespace torka {

QSize RoomyRows::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    const int height = Height(option.fontMetrics);
    const bool isWrapped = option.features.testFlag(QStyleOptionViewItem::WrapText);
    size.setHeight(isWrapped ? std::max(height, size.height() + height - option.fontMetrics.height())
                             : height);
    return size;
}

void RoomyRows::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    option->decorationPosition = QStyleOptionViewItem::Right;
}

} // namespace torka
