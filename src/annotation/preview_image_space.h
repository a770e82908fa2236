#pragma once

#include <QRectF>
#include <QSizeF>
#include <QVector>
#include <optional>

#include "annotation/annotation.h"

// The geometry of the preview window's image area: where a picture is shown
// and how shapes drawn over it map back onto the picture's own pixels.

// The margin kept free around the picture on every side, in points.
inline constexpr qreal kPreviewImageMargin = 24.0;

// Where a picture of `imageSize` is drawn in an area of `areaSize`: scaled by
// the smaller of the two ratios between the area less its margins and the
// picture (small pictures are enlarged), centred. Empty when either size is
// empty or nothing is left inside the margins.
QRectF previewImageDisplayRect(const QSizeF& areaSize, const QSizeF& imageSize);

// Shapes drawn in the image area, moved into the coordinates of the picture:
// the display rectangle's origin is subtracted and positions and sizes are
// scaled by imageSize ÷ displayRect.size() on each axis. Stroke widths and
// fonts keep their on-screen values. `displayRect` must not be empty.
QVector<Annotation> annotationsInImageSpace(const QVector<Annotation>& annotations,
                                            const QRectF& displayRect, const QSizeF& imageSize);
std::optional<QRectF> cropInImageSpace(const std::optional<QRectF>& crop, const QRectF& displayRect,
                                       const QSizeF& imageSize);
