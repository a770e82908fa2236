// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "shelves/shelf_tile_delegate.h"

#include <QIcon>
#include <QPainter>
#include <QPainterPath>

#include "shelves/shelf_detail_view.h"
#include "widgets/widget_style.h"

namespace {

constexpr qreal kCornerRadius = 6;

}  // namespace

void ShelfTileDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const {
    const QSizeF tile = ShelfDetailView::kTileSize;
    const bool hovered = option.state.testFlag(QStyle::State_MouseOver);
    const qreal scale = hovered ? kHoverScale : 1.0;
    QRectF frame(QPointF(), tile * scale);
    frame.moveCenter(QRectF(option.rect).center());

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    QPainterPath rounded;
    rounded.addRoundedRect(frame, kCornerRadius, kCornerRadius);
    painter->setClipPath(rounded);
    const auto icon = index.data(Qt::DecorationRole).value<QIcon>();
    const qreal dpr = painter->device() != nullptr ? painter->device()->devicePixelRatioF() : 1.0;
    painter->drawPixmap(frame, icon.pixmap(tile.toSize(), dpr), QRectF());
    painter->setClipping(false);
    if (option.state.testFlag(QStyle::State_Selected) ||
        option.state.testFlag(QStyle::State_HasFocus)) {
        painter->setPen(QPen(widget_style::accent(option.palette), 2));
        painter->setBrush(Qt::NoBrush);
        painter->drawRoundedRect(frame.adjusted(1, 1, -1, -1), kCornerRadius, kCornerRadius);
    }
    painter->restore();
}

QSize ShelfTileDelegate::sizeHint(const QStyleOptionViewItem& /*option*/,
                                  const QModelIndex& /*index*/) const {
    return ShelfDetailView::kTileSize +
           QSize(ShelfDetailView::kTileSpacing, ShelfDetailView::kTileSpacing);
}
