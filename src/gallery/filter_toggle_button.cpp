// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "gallery/filter_toggle_button.h"

#include <QPainter>

#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

namespace {

constexpr int kSide = 26;
constexpr qreal kCornerRadius = 7;
constexpr int kSymbolPixelSize = 12;

}  // namespace

FilterToggleButton::FilterToggleButton(QWidget* parent) : QAbstractButton(parent) {
    setFixedSize(kSide, kSide);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::TabFocus);
    setAccessibleName(QStringLiteral("Filter"));
    setToolTip(QStringLiteral("Filter"));
}

void FilterToggleButton::setLook(bool panelOpen, bool filtersActive) {
    if (panelOpen == panelOpen_ && filtersActive == filtersActive_) {
        return;
    }
    panelOpen_ = panelOpen;
    filtersActive_ = filtersActive;
    update();
}

QString FilterToggleButton::symbol() const {
    return panelOpen_ ? QStringLiteral("xmark") : QStringLiteral("line.3.horizontal.decrease");
}

void FilterToggleButton::paintEvent(QPaintEvent*) {
    using namespace widget_style;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& colors = palette();
    QColor content;
    QColor fill = Qt::transparent;
    if (panelOpen_) {
        content = primary(colors);
        fill = withAlpha(primary(colors), 0.10);
    } else if (filtersActive_) {
        content = accent(colors);
        fill = withAlpha(accent(colors), 0.12);
    } else {
        content = secondary(colors);
    }
    if (fill.alpha() > 0) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(fill);
        painter.drawRoundedRect(QRectF(rect()), kCornerRadius, kCornerRadius);
    }
    if (hasFocus()) {
        // Focus comes from the keyboard only; show where it is.
        painter.setPen(QPen(accent(colors), 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75), kCornerRadius,
                                kCornerRadius);
    }
    const QPixmap icon = symbolPixmap(symbol(), content, QSize(kSymbolPixelSize, kSymbolPixelSize),
                                      devicePixelRatioF());
    painter.drawPixmap(
        QPointF((width() - kSymbolPixelSize) / 2.0, (height() - kSymbolPixelSize) / 2.0), icon);
}
