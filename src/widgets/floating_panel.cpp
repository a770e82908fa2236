// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "widgets/floating_panel.h"

#include <QPainter>
#include <QPainterPath>

#include "widgets/window_corners.h"

FloatingPanel::FloatingPanel(const QString& accessibleName, int cornerRadius, Focus focus,
                             QWidget* parent)
    : QWidget(parent), cornerRadius_(cornerRadius) {
    Qt::WindowFlags flags =
        Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::NoDropShadowWindowHint;
    if (focus == Focus::refuses) {
        flags |= Qt::WindowDoesNotAcceptFocus;
        setAttribute(Qt::WA_ShowWithoutActivating);
    }
    setWindowFlags(flags);
    setAttribute(Qt::WA_TranslucentBackground);
    setWindowTitle(accessibleName);
    setAccessibleName(accessibleName);
}

void FloatingPanel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool dark = palette().color(QPalette::Window).lightness() < 128;
    QColor fill = dark ? QColor(30, 30, 32) : QColor(246, 246, 246);
    fill.setAlphaF(dark ? 0.92f : 0.94f);
    QPainterPath outline;
    outline.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius_,
                           cornerRadius_);
    painter.fillPath(outline, fill);
    painter.setPen(QColor(128, 128, 128, 90));
    painter.drawPath(outline);
}

void FloatingPanel::showEvent(QShowEvent* event) {
    // A compositor may have started or stopped since the last showing.
    WindowCorners::apply(*this, cornerRadius_);
    QWidget::showEvent(event);
}

void FloatingPanel::resizeEvent(QResizeEvent* event) {
    WindowCorners::apply(*this, cornerRadius_);
    QWidget::resizeEvent(event);
}
