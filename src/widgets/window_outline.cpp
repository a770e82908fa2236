// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "widgets/window_outline.h"

#include <QPainter>
#include <QPainterPath>
#include <QtMath>
#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "platform/platform_services.h"
#include "widgets/widget_style.h"

namespace {

// The span [left, right) of pixel columns whose centres lie strictly inside
// a rounded rectangle on the row whose centre is `y`; nothing off the row.
// Strictly, so that a stroke whose edges fall on pixel centres covers as many
// pixels as it is wide, the same ones on every side.
std::optional<std::pair<int, int>> rowSpan(const QRectF& rect, qreal radius, qreal y, int width) {
    if (rect.isEmpty() || y <= rect.top() || y >= rect.bottom()) {
        return std::nullopt;
    }
    radius = std::clamp<qreal>(radius, 0, std::min(rect.width(), rect.height()) / 2);
    const qreal fromCorner = std::max(rect.top() + radius - y, y - (rect.bottom() - radius));
    qreal inset = 0;
    if (fromCorner > 0) {
        inset = radius - std::sqrt(std::max<qreal>(0, radius * radius - fromCorner * fromCorner));
    }
    // The first column whose centre x + 0.5 lies right of the left edge, and
    // the first one whose centre no longer lies left of the right edge.
    const int left = std::max(0, qFloor(rect.left() + inset - 0.5) + 1);
    const int right = std::min(width, qCeil(rect.right() - inset - 0.5));
    if (right <= left) {
        return std::nullopt;
    }
    return std::make_pair(left, right);
}

using Spans = std::vector<std::pair<int, int>>;

// The columns of one row on the stroke: inside the outer edge, outside the
// inner one (one span across the top and bottom, two down the sides).
Spans ringRow(const QRectF& outer, const QRectF& inner, qreal outerRadius, qreal innerRadius,
              qreal y, int width) {
    const auto outside = rowSpan(outer, outerRadius, y, width);
    if (!outside) {
        return {};
    }
    const auto hole = rowSpan(inner, innerRadius, y, width);
    if (!hole || hole->first >= outside->second || hole->second <= outside->first) {
        return {*outside};
    }
    Spans spans;
    if (hole->first > outside->first) {
        spans.emplace_back(outside->first, hole->first);
    }
    if (outside->second > hole->second) {
        spans.emplace_back(hole->second, outside->second);
    }
    return spans;
}

}  // namespace

OutlineStyle OutlineStyle::recordingTarget() {
    return {QColor(0, 122, 255), 0.15, 0.9, 3, 10, 2};
}

OutlineStyle OutlineStyle::captureTarget() {
    return {QColor(175, 82, 222), 0.08, 0.85, 2.5, 10, 2};
}

WindowOutline::WindowOutline(const OutlineStyle& style, QWidget* parent)
    : QWidget(parent),
      style_(style),
      translucent_(PlatformServices::instance().compositorRunning()) {
    // Bypassing the window manager keeps the outline exactly where it is
    // put, above every managed window, and out of the window list.
    setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                   Qt::WindowDoesNotAcceptFocus | Qt::WindowTransparentForInput |
                   Qt::X11BypassWindowManagerHint | Qt::NoDropShadowWindowHint);
    setAttribute(Qt::WA_ShowWithoutActivating);
    if (translucent_) {
        setAttribute(Qt::WA_TranslucentBackground);
    }
    setWindowTitle(tr("Window outline"));
    setAccessibleName(tr("Window outline"));
}

void WindowOutline::showAround(const QRect& frame) {
    setGeometry(frame);
    show();
    raise();
}

QRegion WindowOutline::ringRegion(const QSize& size, qreal inset, qreal lineWidth, qreal radius) {
    if (size.isEmpty() || lineWidth <= 0) {
        return {};
    }
    const qreal half = lineWidth / 2;
    const QRectF path = QRectF(QPointF(0, 0), QSizeF(size)).adjusted(inset, inset, -inset, -inset);
    const QRectF outer = path.adjusted(-half, -half, half, half);
    const QRectF inner = path.adjusted(half, half, -half, -half);
    const qreal innerRadius = std::max<qreal>(0, radius - half);
    // Rows with the same spans make one band of rectangles: a few per corner.
    QRegion region;
    const auto addBand = [&region](const Spans& spans, int top, int bottom) {
        for (const auto& [left, right] : spans) {
            region += QRect(left, top, right - left, bottom - top);
        }
    };
    int bandTop = 0;
    Spans band = ringRow(outer, inner, radius + half, innerRadius, 0.5, size.width());
    for (int row = 1; row < size.height(); ++row) {
        Spans spans = ringRow(outer, inner, radius + half, innerRadius, row + 0.5, size.width());
        if (spans != band) {
            addBand(band, bandTop, row);
            band = std::move(spans);
            bandTop = row;
        }
    }
    addBand(band, bandTop, size.height());
    return region;
}

void WindowOutline::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRectF path =
        QRectF(rect()).adjusted(style_.inset, style_.inset, -style_.inset, -style_.inset);
    if (!translucent_) {
        // The shape already is the stroke: fill it, opaque.
        painter.fillRect(rect(), style_.color);
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(widget_style::withAlpha(style_.color, style_.fillOpacity));
    painter.setPen(
        QPen(widget_style::withAlpha(style_.color, style_.strokeOpacity), style_.lineWidth));
    painter.drawRoundedRect(path, style_.cornerRadius, style_.cornerRadius);
}

void WindowOutline::resizeEvent(QResizeEvent* event) {
    if (!translucent_) {
        setMask(ringRegion(size(), style_.inset, style_.lineWidth, style_.cornerRadius));
    }
    QWidget::resizeEvent(event);
}
