#include "annotation/preview_image_space.h"

#include <algorithm>
#include <type_traits>
#include <variant>

namespace {

struct ImageSpaceMap {
    QPointF origin;
    qreal kx;
    qreal ky;

    QPointF point(const QPointF& p) const {
        return {(p.x() - origin.x()) * kx, (p.y() - origin.y()) * ky};
    }
    QRectF rect(const QRectF& r) const {
        return {point(r.topLeft()), QSizeF(r.width() * kx, r.height() * ky)};
    }
};

ImageSpaceMap mapFor(const QRectF& displayRect, const QSizeF& imageSize) {
    return {displayRect.topLeft(), imageSize.width() / displayRect.width(),
            imageSize.height() / displayRect.height()};
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

QVector<Annotation> annotationsInImageSpace(const QVector<Annotation>& annotations,
                                            const QRectF& displayRect, const QSizeF& imageSize) {
    const ImageSpaceMap map = mapFor(displayRect, imageSize);
    QVector<Annotation> converted;
    converted.reserve(annotations.size());
    for (const Annotation& annotation : annotations) {
        Annotation copy = annotation;
        std::visit(
            [&map](auto& kind) {
                using Kind = std::decay_t<decltype(kind)>;
                if constexpr (std::is_same_v<Kind, Annotation::Stroke>) {
                    for (QPointF& p : kind.points) {
                        p = map.point(p);
                    }
                } else if constexpr (std::is_same_v<Kind, Annotation::Arrow>) {
                    kind.from = map.point(kind.from);
                    kind.to = map.point(kind.to);
                } else if constexpr (std::is_same_v<Kind, Annotation::Text>) {
                    kind.origin = map.point(kind.origin);
                } else {
                    // Rectangle, blur, pixelate and crop regions.
                    kind.rect = map.rect(kind.rect);
                }
            },
            copy.kind);
        converted.append(copy);
    }
    return converted;
}

std::optional<QRectF> cropInImageSpace(const std::optional<QRectF>& crop, const QRectF& displayRect,
                                       const QSizeF& imageSize) {
    if (!crop) {
        return std::nullopt;
    }
    return mapFor(displayRect, imageSize).rect(*crop);
}
