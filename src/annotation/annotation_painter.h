// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QColor>
#include <QImage>
#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSizeF>
#include <QVector>
#include <functional>

#include "annotation/annotation.h"

class QPainter;
class QPaintDevice;

// Drawing of annotations with a QPainter, shared by the canvas (on screen)
// and the flattening renderer (into a bitmap) so both draw the same shapes.
// All geometry is in the painter's current coordinates.

enum class RegionEffect { blur, pixelate };

// Arrow head length on the canvas and in flattened images.
inline constexpr qreal kCanvasArrowHeadLength = 14.0;
inline constexpr qreal kRenderedArrowHeadLength = 12.0;
inline constexpr qreal kAnnotationOutlineWidth = 2.5;

// Filtered pixels of a region and where to draw them (in painter
// coordinates); a region that reaches past the picture is cut to it.
struct FilteredPixels {
    QImage pixels;
    QRectF target;
};

struct AnnotationPaintStyle {
    qreal arrowHeadLength = kCanvasArrowHeadLength;
    // Filtered pixels for a blur or pixelate region (given in painter
    // coordinates); null pixels draw nothing. When unset, regions get a
    // translucent black placeholder instead.
    std::function<FilteredPixels(RegionEffect, const QRectF&)> filteredRegion;
};

void paintAnnotation(QPainter& painter, const Annotation& annotation,
                     const AnnotationPaintStyle& style);

// Where a text annotation's first line starts: the top of its line box lies
// on the origin, so the baseline is one ascent (of the font on `device`)
// below it. The canvas and flattened images both lay text out this way, so
// saved text sits exactly where it was shown.
QPointF textBaselineStart(const Annotation::Text& text, const QPaintDevice* device);

// A polyline with round caps and joins; nothing for fewer than 2 points.
void paintPolyline(QPainter& painter, const QVector<QPointF>& points, qreal width,
                   const QColor& color);
// Shaft plus a filled head at `to` whose sides leave it at ±30°.
void paintArrow(QPainter& painter, const QPointF& from, const QPointF& to, const QColor& color,
                qreal headLength);
void paintRectangleOutline(QPainter& painter, const QRectF& rect, const QColor& color);
// Dims `bounds` outside `crop` and outlines the crop in white.
void paintCropSurround(QPainter& painter, const QRectF& bounds, const QRectF& crop);
// How a blur or pixelate region looks while it is being dragged out.
void paintRegionPreview(QPainter& painter, const QRectF& rect);

// The pixel rectangle covering `rect` (in points) of an image with the given
// pixels-per-point factors, edges rounded to the nearest pixel.
QRect pixelRegion(const QRectF& rect, qreal pixelsPerPointX, qreal pixelsPerPointY);
// Runs the effect's filter on the part of `rect` (in points) that lies on
// `source`, whose whole extent maps onto `pointSize` points.
FilteredPixels filterRegion(const QImage& source, const QSizeF& pointSize, RegionEffect effect,
                            const QRectF& rect);
