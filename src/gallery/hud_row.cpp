// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "gallery/hud_row.h"

#include <QPainter>
#include <QPainterPath>

#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

namespace {

constexpr int kPaddingX = 8;
constexpr int kIconFrame = 26;
constexpr qreal kIconFrameRadius = 6;
constexpr int kIconSize = 12;
constexpr int kIconGap = 10;
constexpr qreal kHoverRadius = 7;
constexpr int kLabelPixelSize = 13;
constexpr int kShortcutPixelSize = 11;

}  // namespace

HUDRow::HUDRow(const QString& icon, const QString& label, const QString& shortcut,
               const QColor& tint, std::function<void()> action, QWidget* parent)
    : QAbstractButton(parent),
      icon_(icon),
      label_(label),
      shortcut_(shortcut),
      tint_(tint),
      action_(std::move(action)) {
    setText(label);
    setAccessibleName(label);
    setAccessibleDescription(shortcut);
    setAttribute(Qt::WA_Hover);
    // The HUD never takes the keyboard from the window the user works in.
    setFocusPolicy(Qt::NoFocus);
    connect(this, &QAbstractButton::clicked, this, [this] {
        if (action_) {
            action_();
        }
    });
}

QSize HUDRow::sizeHint() const {
    return {200, kHeight};
}

void HUDRow::enterEvent(QEnterEvent* event) {
    hovered_ = true;
    update();
    QAbstractButton::enterEvent(event);
}

void HUDRow::leaveEvent(QEvent* event) {
    hovered_ = false;
    update();
    QAbstractButton::leaveEvent(event);
}

void HUDRow::paintEvent(QPaintEvent*) {
    using namespace widget_style;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (hovered_) {
        QPainterPath hover;
        hover.addRoundedRect(QRectF(rect()), kHoverRadius, kHoverRadius);
        painter.fillPath(hover, withAlpha(primary(palette()), 0.07));
    }
    const QRectF frame(kPaddingX, (height() - kIconFrame) / 2.0, kIconFrame, kIconFrame);
    QPainterPath square;
    square.addRoundedRect(frame, kIconFrameRadius, kIconFrameRadius);
    painter.fillPath(square, withAlpha(tint_, 0.18));
    const QPixmap symbol =
        symbolPixmap(icon_, tint_, QSize(kIconSize, kIconSize), devicePixelRatioF());
    painter.drawPixmap((frame.center() - QPointF(kIconSize, kIconSize) / 2.0).toPoint(), symbol);

    const int textLeft = static_cast<int>(frame.right()) + kIconGap;
    const QRect textArea(textLeft, 0, width() - textLeft - kPaddingX, height());
    painter.setFont(widget_style::font(QWidget::font(), kShortcutPixelSize, QFont::Normal));
    painter.setPen(secondary(palette()));
    painter.drawText(textArea, Qt::AlignRight | Qt::AlignVCenter, shortcut_);
    painter.setFont(widget_style::font(QWidget::font(), kLabelPixelSize, QFont::Normal));
    painter.setPen(primary(palette()));
    painter.drawText(textArea, Qt::AlignLeft | Qt::AlignVCenter, label_);
}
