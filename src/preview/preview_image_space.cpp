// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "preview/preview_image_space.h"

#include <algorithm>
#include <type_traits>
#include <variant>

#include "annotation/annotated_image_renderer.h"

namespace {

// Shapes moved by `offset`; sizes, widths and fonts untouched.
QVector<Annotation> movedBy(const QVector<Annotation>& annotations, const QPointF& offset) {
    QVector<Annotation> moved;
    moved.reserve(annotations.size());
    for (Annotation annotation : annotations) {
        std::visit(
            [&offset](auto& kind) {
                using Kind = std::decay_t<decltype(kind)>;
                if constexpr (std::is_same_v<Kind, Annotation::Stroke>) {
                    for (QPointF& p : kind.points) {
                        p += offset;
                    }
                } else if constexpr (std::is_same_v<Kind, Annotation::Arrow>) {
                    kind.from += offset;
                    kind.to += offset;
                } else if constexpr (std::is_same_v<Kind, Annotation::Text>) {
                    kind.origin += offset;
                } else {
                    // Rectangle, blur, pixelate and crop regions.
                    kind.rect.translate(offset);
                }
            },
            annotation.kind);
        moved.append(annotation);
    }
    return moved;
}

}  // namespace

QRectF previewImageDisplayRect(const QSizeF& areaSize, const QSizeF& imageSize) {
    const qreal availableWidth = areaSize.width() - 2 * kPreviewImageMargin;
    const qreal availableHeight = areaSize.height() - 2 * kPreviewImageMargin;
    if (imageSize.width() <= 0 || imageSize.height() <= 0 || availableWidth <= 0 ||
        availableHeight <= 0) {
        return {};
    }
    const qreal k =
        std::min(availableWidth / imageSize.width(), availableHeight / imageSize.height());
    const QSizeF shown = imageSize * k;
    return {
        QPointF((areaSize.width() - shown.width()) / 2, (areaSize.height() - shown.height()) / 2),
        shown};
}

QImage flattenOntoPicture(const QImage& picture, const QVector<Annotation>& annotations,
                          const std::optional<QRectF>& crop, const QRectF& displayRect) {
    if (picture.isNull() || displayRect.width() <= 0 || displayRect.height() <= 0) {
        return picture;
    }
    // The picture is handed over as if it had the display's size in points,
    // so that the renderer's one scale enlarges the shapes together with
    // their widths, arrow heads and fonts. The display keeps the picture's
    // proportions, so the width alone gives the scale.
    const qreal pixelsPerPoint = picture.width() / displayRect.width();
    QImage source = picture;
    source.setDevicePixelRatio(pixelsPerPoint);
    const QPointF offset = -displayRect.topLeft();
    std::optional<QRectF> movedCrop = crop;
    if (movedCrop) {
        movedCrop->translate(offset);
    }
    QImage flattened =
        renderAnnotatedImage(source, movedBy(annotations, offset), movedCrop, pixelsPerPoint);
    flattened.setDevicePixelRatio(picture.devicePixelRatio());
    return flattened;
}
