// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "annotation/annotation_painter.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QPolygonF>
#include <cmath>
#include <numbers>
#include <type_traits>

#include "annotation/region_filters.h"
#include "widgets/widget_style.h"

namespace {

constexpr qreal kBlurPlaceholderAlpha = 0.35;
constexpr qreal kPixelatePlaceholderAlpha = 0.5;
constexpr qreal kCropDimAlpha = 0.4;
constexpr qreal kCropOutlineWidth = 1.5;

using widget_style::withAlpha;

// A stroke's opacity stands in for its colour's own alpha rather than adding
// to it.
QColor strokeColor(const Annotation::Stroke& stroke) {
    QColor opaque = stroke.color;
    opaque.setAlphaF(1.0f);
    return withAlpha(opaque, stroke.opacity);
}

void paintText(QPainter& painter, const Annotation::Text& text) {
    painter.save();
    painter.setFont(text.font);
    painter.setPen(text.color);
    painter.drawText(textBaselineStart(text, painter.device()), text.text);
    painter.restore();
}

void paintRegion(QPainter& painter, RegionEffect effect, const QRectF& rect,
                 const AnnotationPaintStyle& style) {
    if (!style.filteredRegion) {
        const qreal alpha =
            effect == RegionEffect::blur ? kBlurPlaceholderAlpha : kPixelatePlaceholderAlpha;
        painter.fillRect(rect, withAlpha(Qt::black, alpha));
        return;
    }
    const FilteredPixels filtered = style.filteredRegion(effect, rect);
    if (filtered.pixels.isNull()) {
        return;
    }
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
    painter.drawImage(filtered.target, filtered.pixels);
    painter.restore();
}

}  // namespace

void paintAnnotation(QPainter& painter, const Annotation& annotation,
                     const AnnotationPaintStyle& style) {
    std::visit(
        [&](const auto& kind) {
            using Kind = std::decay_t<decltype(kind)>;
            if constexpr (std::is_same_v<Kind, Annotation::Stroke>) {
                paintPolyline(painter, kind.points, kind.width, strokeColor(kind));
            } else if constexpr (std::is_same_v<Kind, Annotation::Arrow>) {
                paintArrow(painter, kind.from, kind.to, kind.color, style.arrowHeadLength);
            } else if constexpr (std::is_same_v<Kind, Annotation::Rectangle>) {
                paintRectangleOutline(painter, kind.rect, kind.color);
            } else if constexpr (std::is_same_v<Kind, Annotation::Text>) {
                paintText(painter, kind);
            } else if constexpr (std::is_same_v<Kind, Annotation::Blur>) {
                paintRegion(painter, RegionEffect::blur, kind.rect, style);
            } else if constexpr (std::is_same_v<Kind, Annotation::Pixelate>) {
                paintRegion(painter, RegionEffect::pixelate, kind.rect, style);
            }
            // A crop is never drawn as a shape.
        },
        annotation.kind);
}

QPointF textBaselineStart(const Annotation::Text& text, const QPaintDevice* device) {
    return text.origin + QPointF(0.0, QFontMetricsF(text.font, device).ascent());
}

void paintPolyline(QPainter& painter, const QVector<QPointF>& points, qreal width,
                   const QColor& color) {
    if (points.size() < 2) {
        return;
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    // One path, so overlapping segments of a translucent stroke do not darken.
    QPainterPath path(points.first());
    for (qsizetype i = 1; i < points.size(); ++i) {
        path.lineTo(points[i]);
    }
    painter.drawPath(path);
    painter.restore();
}

void paintArrow(QPainter& painter, const QPointF& from, const QPointF& to, const QColor& color,
                qreal headLength) {
    constexpr qreal kHeadSpread = std::numbers::pi / 6.0;
    const qreal angle = std::atan2(to.y() - from.y(), to.x() - from.x());
    const QPointF corner1 =
        to - headLength * QPointF(std::cos(angle - kHeadSpread), std::sin(angle - kHeadSpread));
    const QPointF corner2 =
        to - headLength * QPointF(std::cos(angle + kHeadSpread), std::sin(angle + kHeadSpread));
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(QPen(color, kAnnotationOutlineWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawLine(from, to);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawPolygon(QPolygonF{to, corner1, corner2}, Qt::WindingFill);
    painter.restore();
}

void paintRectangleOutline(QPainter& painter, const QRectF& rect, const QColor& color) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(
        QPen(color, kAnnotationOutlineWidth, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect);
    painter.restore();
}

void paintCropSurround(QPainter& painter, const QRectF& bounds, const QRectF& crop) {
    const QColor dim = withAlpha(Qt::black, kCropDimAlpha);
    const QRectF above(bounds.left(), bounds.top(), bounds.width(), crop.top() - bounds.top());
    const QRectF below(bounds.left(), crop.bottom(), bounds.width(),
                       bounds.bottom() - crop.bottom());
    const QRectF left(bounds.left(), crop.top(), crop.left() - bounds.left(), crop.height());
    const QRectF right(crop.right(), crop.top(), bounds.right() - crop.right(), crop.height());
    for (const QRectF& band : {above, below, left, right}) {
        if (band.width() > 0 && band.height() > 0) {
            painter.fillRect(band, dim);
        }
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(QPen(Qt::white, kCropOutlineWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(crop);
    painter.restore();
}

void paintRegionPreview(QPainter& painter, const QRectF& rect) {
    painter.fillRect(rect, withAlpha(Qt::black, 0.3));
    painter.save();
    painter.setPen(QPen(withAlpha(Qt::white, 0.4), 1.0));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect);
    painter.restore();
}

QRect pixelRegion(const QRectF& rect, qreal pixelsPerPointX, qreal pixelsPerPointY) {
    const int left = static_cast<int>(std::lround(rect.left() * pixelsPerPointX));
    const int top = static_cast<int>(std::lround(rect.top() * pixelsPerPointY));
    const int right = static_cast<int>(std::lround(rect.right() * pixelsPerPointX));
    const int bottom = static_cast<int>(std::lround(rect.bottom() * pixelsPerPointY));
    return QRect(QPoint(left, top), QSize(right - left, bottom - top));
}

FilteredPixels filterRegion(const QImage& source, const QSizeF& pointSize, RegionEffect effect,
                            const QRectF& rect) {
    if (source.isNull() || pointSize.width() <= 0 || pointSize.height() <= 0) {
        return {};
    }
    const qreal scaleX = source.width() / pointSize.width();
    const qreal scaleY = source.height() / pointSize.height();
    // The filters cut the region to the picture themselves; they get it
    // whole so the pixelation grid stays centred on the full region.
    const QRect wholeRegion = pixelRegion(rect, scaleX, scaleY);
    const QRect region = wholeRegion.intersected(source.rect());
    if (region.isEmpty()) {
        return {};
    }
    FilteredPixels result;
    result.pixels = effect == RegionEffect::blur ? blurredRegion(source, wholeRegion)
                                                 : pixelatedRegion(source, wholeRegion);
    result.target = QRectF(region.x() / scaleX, region.y() / scaleY, region.width() / scaleX,
                           region.height() / scaleY);
    return result;
}
