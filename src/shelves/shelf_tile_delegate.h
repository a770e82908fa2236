// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QStyledItemDelegate>

// Draws a shelf's file tile: its picture with rounded corners, grown to
// 105 % under the pointer, and an accent outline when it is current.
class ShelfTileDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    static constexpr qreal kHoverScale = 1.05;

    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};
