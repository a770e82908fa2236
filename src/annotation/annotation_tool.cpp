// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "annotation/annotation_tool.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr qreal kPencilWidth = 2.0;
constexpr qreal kHighlighterWidth = 12.0;
constexpr qreal kHighlighterOpacity = 0.4;
// Drags no larger than these are taken for slips of the hand.
constexpr qreal kMinimumRectangleSide = 2.0;
constexpr qreal kMinimumRegionSide = 4.0;

struct ToolKey {
    AnnotationTool tool;
    Qt::Key key;
};

constexpr std::array<ToolKey, kAllAnnotationTools.size()> kToolKeys{{
    {AnnotationTool::pencil, Qt::Key_P},
    {AnnotationTool::arrow, Qt::Key_A},
    {AnnotationTool::rectangle, Qt::Key_R},
    {AnnotationTool::text, Qt::Key_T},
    {AnnotationTool::blur, Qt::Key_B},
    {AnnotationTool::pixelate, Qt::Key_X},
    {AnnotationTool::crop, Qt::Key_C},
    {AnnotationTool::highlighter, Qt::Key_H},
}};

QRectF spannedRect(const QPointF& a, const QPointF& b) {
    return QRectF(QPointF(std::min(a.x(), b.x()), std::min(a.y(), b.y())),
                  QPointF(std::max(a.x(), b.x()), std::max(a.y(), b.y())));
}

// The end moved onto the nearest multiple of 45° around the start, keeping
// the arrow's length (halfway angles round away from zero).
QPointF snappedArrowEnd(const QPointF& start, const QPointF& end) {
    constexpr qreal kStep = std::numbers::pi / 4.0;
    const QPointF delta = end - start;
    const qreal angle = std::atan2(delta.y(), delta.x());
    const qreal snapped = std::round(angle / kStep) * kStep;
    const qreal length = std::hypot(delta.x(), delta.y());
    return start + length * QPointF(std::cos(snapped), std::sin(snapped));
}

// Both sides shortened to the smaller one; the minimum corner stays put.
QRectF squaredRect(const QRectF& rect) {
    const qreal side = std::min(rect.width(), rect.height());
    return QRectF(rect.topLeft(), QSizeF(side, side));
}

std::optional<Annotation> strokeFor(const ToolGesture& gesture) {
    if (gesture.points.size() < 2) {
        return std::nullopt;
    }
    const bool pencil = gesture.tool == AnnotationTool::pencil;
    return Annotation{Annotation::Stroke{gesture.points, pencil ? kPencilWidth : kHighlighterWidth,
                                         gesture.color, pencil ? 1.0 : kHighlighterOpacity}};
}

std::optional<Annotation> arrowFor(const ToolGesture& gesture, bool shift) {
    const QPointF start = gesture.points.first();
    const QPointF end = gesture.points.last();
    if (end == start) {
        return std::nullopt;
    }
    return Annotation{
        Annotation::Arrow{start, shift ? snappedArrowEnd(start, end) : end, gesture.color}};
}

std::optional<Annotation> rectangleFor(const ToolGesture& gesture, bool shift) {
    const QRectF spanned = spannedRect(gesture.points.first(), gesture.points.last());
    const QRectF rect = shift ? squaredRect(spanned) : spanned;
    if (rect.width() <= kMinimumRectangleSide || rect.height() <= kMinimumRectangleSide) {
        return std::nullopt;
    }
    return Annotation{Annotation::Rectangle{rect, gesture.color}};
}

std::optional<Annotation> regionFor(const ToolGesture& gesture) {
    const QRectF rect = spannedRect(gesture.points.first(), gesture.points.last());
    if (rect.width() <= kMinimumRegionSide || rect.height() <= kMinimumRegionSide) {
        return std::nullopt;
    }
    switch (gesture.tool) {
        case AnnotationTool::blur:
            return Annotation{Annotation::Blur{rect}};
        case AnnotationTool::pixelate:
            return Annotation{Annotation::Pixelate{rect}};
        case AnnotationTool::crop:
            return Annotation{Annotation::Crop{rect}};
        default:
            return std::nullopt;
    }
}

}  // namespace

QString paletteLabel(AnnotationTool tool) {
    switch (tool) {
        case AnnotationTool::pencil:
            return QStringLiteral("Pencil");
        case AnnotationTool::arrow:
            return QStringLiteral("Arrow");
        case AnnotationTool::rectangle:
            return QStringLiteral("Rectangle");
        case AnnotationTool::text:
            return QStringLiteral("Text");
        case AnnotationTool::blur:
            return QStringLiteral("Blur");
        case AnnotationTool::pixelate:
            return QStringLiteral("Pixelate");
        case AnnotationTool::crop:
            return QStringLiteral("Crop");
        case AnnotationTool::highlighter:
            return QStringLiteral("Highlight");
    }
    return {};
}

QString paletteIconName(AnnotationTool tool) {
    switch (tool) {
        case AnnotationTool::pencil:
            return QStringLiteral("pencil");
        case AnnotationTool::arrow:
            return QStringLiteral("arrow.up.right");
        case AnnotationTool::rectangle:
            return QStringLiteral("rectangle");
        case AnnotationTool::text:
            return QStringLiteral("textformat");
        case AnnotationTool::blur:
            return QStringLiteral("aqi.medium");
        case AnnotationTool::pixelate:
            return QStringLiteral("squareshape.split.2x2");
        case AnnotationTool::crop:
            return QStringLiteral("crop");
        case AnnotationTool::highlighter:
            return QStringLiteral("highlighter");
    }
    return {};
}

std::optional<AnnotationTool> annotationToolForKey(int qtKey) {
    const auto* found = std::find_if(kToolKeys.begin(), kToolKeys.end(),
                                     [qtKey](const ToolKey& entry) { return entry.key == qtKey; });
    if (found == kToolKeys.end()) {
        return std::nullopt;
    }
    return found->tool;
}

QString annotationToolKeyName(AnnotationTool tool) {
    for (const ToolKey& entry : kToolKeys) {
        if (entry.tool == tool) {
            // Letter keys' codes are the capital letters themselves.
            return QString(QChar(static_cast<char16_t>(entry.key)));
        }
    }
    return {};
}

std::optional<Annotation> annotationForGesture(const ToolGesture& gesture) {
    if (gesture.points.isEmpty()) {
        return std::nullopt;
    }
    const bool shift = gesture.modifiers.testFlag(Qt::ShiftModifier);
    switch (gesture.tool) {
        case AnnotationTool::pencil:
        case AnnotationTool::highlighter:
            return strokeFor(gesture);
        case AnnotationTool::arrow:
            return arrowFor(gesture, shift);
        case AnnotationTool::rectangle:
            return rectangleFor(gesture, shift);
        case AnnotationTool::blur:
        case AnnotationTool::pixelate:
        case AnnotationTool::crop:
            return regionFor(gesture);
        case AnnotationTool::text:
            return std::nullopt;
    }
    return std::nullopt;
}
