// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QImage>
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

// Flattens shapes drawn in the image area (and the crop, both in the area's
// points) into the picture shown at `displayRect`. Every pixel of the picture
// is kept, and positions, stroke widths, arrow heads and text grow by the
// picture's pixels per point of the display, so each shape covers the part
// of the picture it covered on screen. The result has the picture's pixel
// density. `picture` unchanged when `displayRect` is empty. Safe on worker
// threads.
QImage flattenOntoPicture(const QImage& picture, const QVector<Annotation>& annotations,
                          const std::optional<QRectF>& crop, const QRectF& displayRect);
