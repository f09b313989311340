// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFontMetrics>
#include <QStyledItemDelegate>
#include <QWidget>
#include <algorithm>

namespace torka {

// Rows of lists with space above and below. The icon of a row stands at its end.
//
// A list that must show all its rows limits their height; a row keeps the height of its text.
class RoomyRows final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    static int RoomyHeight(const QFontMetrics& metrics) { return metrics.height() * 8 / 5; }
    // In pixels. The caller lays the items out again when Height() has changed.
    void LimitHeight(int height) { limit = height; }
    int Height(const QFontMetrics& metrics) const {
        return std::clamp(limit, metrics.height(), RoomyHeight(metrics));
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    int limit = QWIDGETSIZE_MAX;
};

} // namespace torka
