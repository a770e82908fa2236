// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "onboarding/primary_button.h"

#include <QPainter>
#include <QPainterPath>

#include "widgets/widget_style.h"

namespace {

constexpr int kHeight = 30;
constexpr int kPadding = 20;
constexpr qreal kRadius = 8.0;
constexpr int kTextPixels = 13;

}  // namespace

PrimaryButton::PrimaryButton(const QString& text, QWidget* parent) : QPushButton(text, parent) {
    setAccessibleName(text);
    setFont(widget_style::font(font(), kTextPixels, QFont::DemiBold));
    setCursor(Qt::PointingHandCursor);
    // Repainted as the pointer comes and goes, for the hover shade.
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
}

QSize PrimaryButton::sizeHint() const {
    return {fontMetrics().horizontalAdvance(text()) + 2 * kPadding, kHeight};
}

QSize PrimaryButton::minimumSizeHint() const {
    return sizeHint();
}

void PrimaryButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor fill = widget_style::accent(palette());
    if (isDown()) {
        fill = fill.darker(120);
    } else if (underMouse()) {
        fill = fill.lighter(110);
    }
    if (!isEnabled()) {
        fill = widget_style::withAlpha(fill, 0.4);
    }
    QPainterPath shape;
    shape.addRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), kRadius, kRadius);
    painter.fillPath(shape, fill);
    if (hasFocus()) {
        painter.setPen(QPen(widget_style::withAlpha(Qt::white, 0.8), 1.5));
        painter.drawPath(shape);
    }
    painter.setPen(Qt::white);
    painter.drawText(rect(), Qt::AlignCenter, text());
}
