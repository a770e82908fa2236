// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "annotation/annotated_image_renderer.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "annotation/annotation_painter.h"

namespace {

// The part of the picture a crop keeps, in points: the crop moved inside the
// picture's top-left edges and shortened to its far edges.
QRectF keptArea(const QSizeF& imageSize, const QRectF& crop) {
    const qreal x = std::max(crop.left(), 0.0);
    const qreal y = std::max(crop.top(), 0.0);
    const qreal w = std::min(
        crop.width(), crop.left() >= 0 ? imageSize.width() - crop.left() : imageSize.width());
    const qreal h = std::min(
        crop.height(), crop.top() >= 0 ? imageSize.height() - crop.top() : imageSize.height());
    return QRectF(x, y, w, h);
}

// The pixels of `area` (in points) of a picture with the given density.
QRect pixelArea(const QRectF& area, qreal ratio) {
    return QRect(static_cast<int>(std::lround(area.x() * ratio)),
                 static_cast<int>(std::lround(area.y() * ratio)),
                 static_cast<int>(std::lround(area.width() * ratio)),
                 static_cast<int>(std::lround(area.height() * ratio)));
}

}  // namespace

QImage renderAnnotatedImage(const QImage& image, const QVector<Annotation>& annotations,
                            const std::optional<QRectF>& cropRect, qreal scale) {
    if (image.isNull()) {
        return image;
    }
    QRectF area(QPointF(0, 0), image.deviceIndependentSize());
    if (cropRect) {
        area = keptArea(area.size(), cropRect->normalized());
    }
    // Whole pixels, the fraction dropped; but a size that is whole up to the
    // rounding of points times scale (61 / 1.75 × 1.75) keeps its last pixel.
    const auto wholePixels = [scale](qreal points) {
        constexpr qreal kRoundingSlack = 1e-6;
        return static_cast<int>(points * scale + kRoundingSlack);
    };
    const int pixelWidth = wholePixels(area.width());
    const int pixelHeight = wholePixels(area.height());
    if (pixelWidth <= 0 || pixelHeight <= 0) {
        return image;
    }
    // The kept part is drawn straight from the picture rather than cut out
    // first: on 4K pictures the extra copy costs as much as all the shapes.
    const QRect basePixels = pixelArea(area, image.devicePixelRatio()).intersected(image.rect());
    if (basePixels.isEmpty()) {
        return image;
    }
    QImage result(pixelWidth, pixelHeight, QImage::Format_ARGB32_Premultiplied);
    if (result.isNull()) {
        return image;
    }
    result.setDevicePixelRatio(scale);
    if (basePixels.size() != result.size()) {
        result.fill(Qt::transparent);  // the edges of a scaled picture may not cover it all
    }

    QPainter painter(&result);
    if (!painter.isActive()) {
        return image;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(QRectF(QPointF(0, 0), area.size()), image, QRectF(basePixels));
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);

    // Annotations are in the whole picture's points; moving the origin to the
    // kept area keeps them on the pixels they were drawn over.
    painter.translate(-area.topLeft());
    painter.setClipRect(area);
    AnnotationPaintStyle style;
    style.arrowHeadLength = kRenderedArrowHeadLength;
    const QSizeF pictureSize = image.deviceIndependentSize();
    style.filteredRegion = [&image, pictureSize](RegionEffect effect, const QRectF& rect) {
        return filterRegion(image, pictureSize, effect, rect);
    };
    for (const Annotation& annotation : annotations) {
        paintAnnotation(painter, annotation, style);
    }
    painter.end();
    return result;
}
