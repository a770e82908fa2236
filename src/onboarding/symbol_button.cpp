// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "onboarding/symbol_button.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

namespace {

constexpr int kWordPixels = 13;
constexpr int kPadding = 8;

}  // namespace

SymbolButton::SymbolButton(const QString& symbol, int symbolSize, const QString& accessibleName,
                           QWidget* parent)
    : QAbstractButton(parent), symbol_(symbol), symbolSize_(symbolSize) {
    setAccessibleName(accessibleName);
    setToolTip(accessibleName);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    // Repainted as the pointer comes and goes, for the hover shade.
    setAttribute(Qt::WA_Hover);
    setFont(widget_style::font(font(), kWordPixels, QFont::DemiBold));
}

void SymbolButton::setWord(const QString& word) {
    word_ = word;
    setText(word);
    updateGeometry();
    update();
}

void SymbolButton::setSymbolOpacity(qreal opacity) {
    opacity_ = opacity;
    update();
}

void SymbolButton::setCircleFill(const QColor& fill) {
    circleFill_ = fill;
    update();
}

QSize SymbolButton::sizeHint() const {
    if (!word_.isEmpty()) {
        return {fontMetrics().horizontalAdvance(word_) + 2 * kPadding, symbolSize_ + 2 * kPadding};
    }
    return {symbolSize_ + 2 * kPadding, symbolSize_ + 2 * kPadding};
}

void SymbolButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF area = QRectF(rect()).adjusted(1, 1, -1, -1);
    if (circleFill_.alpha() > 0) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(circleFill_);
        painter.drawEllipse(area);
    }
    // Hover and press brighten the drawing a little, so the faint symbols
    // still answer the pointer.
    qreal opacity = opacity_;
    if (isEnabled() && (underMouse() || isDown())) {
        opacity = std::min(1.0, opacity + 0.25);
    }
    const QColor ink = widget_style::withAlpha(Qt::white, opacity);
    if (!word_.isEmpty()) {
        painter.setPen(ink);
        painter.drawText(rect(), Qt::AlignCenter, word_);
    } else {
        const QSize size(symbolSize_, symbolSize_);
        const QPixmap symbol = symbolPixmap(symbol_, ink, size, devicePixelRatioF());
        const QPointF corner = QRectF(rect()).center() - QPointF(size.width(), size.height()) / 2;
        painter.drawPixmap(corner, symbol);
    }
    if (hasFocus()) {
        QPainterPath ring;
        if (circleFill_.alpha() > 0) {
            ring.addEllipse(area);
        } else {
            ring.addRoundedRect(area, 6, 6);
        }
        painter.setPen(QPen(widget_style::withAlpha(widget_style::accent(palette()), 0.9), 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(ring);
    }
}
