// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "area_capture/area_selection_geometry.h"

#include <QtMath>
#include <algorithm>
#include <type_traits>

namespace {

constexpr std::array<SelectionHandle, 8> kGrips = {
    SelectionHandle::topLeft, SelectionHandle::topMid,   SelectionHandle::topRight,
    SelectionHandle::midLeft, SelectionHandle::midRight, SelectionHandle::botLeft,
    SelectionHandle::botMid,  SelectionHandle::botRight,
};

struct MovedEdges {
    bool left = false;
    bool top = false;
    bool right = false;
    bool bottom = false;
};

MovedEdges edgesMovedBy(SelectionHandle handle) {
    switch (handle) {
        case SelectionHandle::topLeft:
            return {true, true, false, false};
        case SelectionHandle::topMid:
            return {false, true, false, false};
        case SelectionHandle::topRight:
            return {false, true, true, false};
        case SelectionHandle::midLeft:
            return {true, false, false, false};
        case SelectionHandle::midRight:
            return {false, false, true, false};
        case SelectionHandle::botLeft:
            return {true, false, false, true};
        case SelectionHandle::botMid:
            return {false, false, false, true};
        case SelectionHandle::botRight:
            return {false, false, true, true};
        case SelectionHandle::move:
            return {true, true, true, true};
    }
    return {};
}

// Maps a point of the overlay into the cut: translate, then scale.
struct CutMapping {
    QPointF origin;
    qreal kx = 1.0;
    qreal ky = 1.0;

    QPointF point(const QPointF& p) const {
        return {(p.x() - origin.x()) * kx, (p.y() - origin.y()) * ky};
    }
    QRectF rect(const QRectF& r) const {
        return {point(r.topLeft()), QSizeF(r.width() * kx, r.height() * ky)};
    }
    qreal lineScale() const { return std::min(kx, ky); }
};

CutMapping mappingFor(const QRectF& selection, const QSizeF& cutSize) {
    CutMapping mapping;
    mapping.origin = selection.topLeft();
    mapping.kx = selection.width() > 0 ? cutSize.width() / selection.width() : 1.0;
    mapping.ky = selection.height() > 0 ? cutSize.height() / selection.height() : 1.0;
    return mapping;
}

Annotation::Kind mapKind(const Annotation::Kind& kind, const CutMapping& m) {
    return std::visit(
        [&m](auto shape) -> Annotation::Kind {
            using Shape = std::decay_t<decltype(shape)>;
            if constexpr (std::is_same_v<Shape, Annotation::Stroke>) {
                for (QPointF& p : shape.points) {
                    p = m.point(p);
                }
                shape.width *= m.lineScale();
            } else if constexpr (std::is_same_v<Shape, Annotation::Arrow>) {
                shape.from = m.point(shape.from);
                shape.to = m.point(shape.to);
            } else if constexpr (std::is_same_v<Shape, Annotation::Text>) {
                shape.origin = m.point(shape.origin);  // the font keeps its size
            } else {
                shape.rect = m.rect(shape.rect);
            }
            return shape;
        },
        kind);
}

}  // namespace

void AreaSelectionGeometry::selectAll() {
    selection_ = QRectF(QPointF(0, 0), bounds_);
    selectionSet_ = true;
    dragStart_.reset();
    activeHandle_.reset();
}

AreaSelectionGeometry::Press AreaSelectionGeometry::press(const QPointF& p, bool drawingEnabled) {
    if (selectionSet_) {
        if (const auto handle = handleAt(p)) {
            activeHandle_ = handle;
            dragOriginRect_ = selection_;
            dragOriginPoint_ = p;
            return Press::handleDrag;
        }
    }
    if (drawingEnabled) {
        return Press::forwardToCanvas;
    }
    activeHandle_.reset();
    dragStart_ = p;
    if (selectionSet_) {
        selectionSet_ = false;
        selection_ = QRectF();
    }
    return Press::newSelection;
}

void AreaSelectionGeometry::drag(const QPointF& p) {
    if (activeHandle_) {
        dragHandle(p);
    } else if (dragStart_) {
        selection_ = QRectF(*dragStart_, p).normalized();
    }
}

void AreaSelectionGeometry::dragHandle(const QPointF& p) {
    const QPointF d = p - dragOriginPoint_;
    const MovedEdges moved = edgesMovedBy(*activeHandle_);
    qreal left = dragOriginRect_.left() + (moved.left ? d.x() : 0);
    qreal right = dragOriginRect_.right() + (moved.right ? d.x() : 0);
    qreal top = dragOriginRect_.top() + (moved.top ? d.y() : 0);
    qreal bottom = dragOriginRect_.bottom() + (moved.bottom ? d.y() : 0);
    // Edges never swap: a dragged edge that passes its opposite pushes it.
    if (right - left < kMinimumSide) {
        right = left + kMinimumSide;
    }
    if (bottom - top < kMinimumSide) {
        bottom = top + kMinimumSide;
    }
    // Clamping after the minimum: against the screen's edge a selection
    // shrinks rather than stops.
    left = std::max(left, 0.0);
    top = std::max(top, 0.0);
    right = std::min(right, bounds_.width());
    bottom = std::min(bottom, bounds_.height());
    selection_ = QRectF(left, top, right - left, bottom - top);
}

bool AreaSelectionGeometry::release() {
    const bool bigEnough = selection_.width() > kConfirmSide && selection_.height() > kConfirmSide;
    if (activeHandle_) {
        activeHandle_.reset();
        return bigEnough;
    }
    if (!dragStart_) {
        return false;
    }
    dragStart_.reset();
    if (bigEnough) {
        selectionSet_ = true;
    }
    return bigEnough;
}

std::optional<SelectionHandle> AreaSelectionGeometry::handleAt(const QPointF& p) const {
    if (!selectionSet_) {
        return std::nullopt;
    }
    for (SelectionHandle grip : kGrips) {
        if (handleHitRect(grip, selection_).contains(p)) {
            return grip;
        }
    }
    if (selection_.contains(p)) {
        return SelectionHandle::move;
    }
    return std::nullopt;
}

bool AreaSelectionGeometry::isOnGrip(const QPointF& p) const {
    const auto handle = handleAt(p);
    return handle && *handle != SelectionHandle::move;
}

Qt::CursorShape AreaSelectionGeometry::cursorAt(const QPointF& p, bool drawingEnabled) const {
    if (!selectionSet_ || drawingEnabled) {
        return Qt::CrossCursor;
    }
    const auto handle = handleAt(p);
    if (!handle) {
        return Qt::CrossCursor;
    }
    switch (*handle) {
        case SelectionHandle::topMid:
        case SelectionHandle::botMid:
            return Qt::SizeVerCursor;
        case SelectionHandle::midLeft:
        case SelectionHandle::midRight:
            return Qt::SizeHorCursor;
        case SelectionHandle::move:
            return Qt::OpenHandCursor;
        default:
            // Corners deliberately keep the plain arrow.
            return Qt::ArrowCursor;
    }
}

bool AreaSelectionGeometry::canSave() const {
    return selection_.width() > kSaveSide && selection_.height() > kSaveSide;
}

QPointF AreaSelectionGeometry::handlePosition(SelectionHandle handle, const QRectF& r) {
    const qreal midX = r.center().x();
    const qreal midY = r.center().y();
    switch (handle) {
        case SelectionHandle::topLeft:
            return {r.left(), r.top()};
        case SelectionHandle::topMid:
            return {midX, r.top()};
        case SelectionHandle::topRight:
            return {r.right(), r.top()};
        case SelectionHandle::midLeft:
            return {r.left(), midY};
        case SelectionHandle::midRight:
            return {r.right(), midY};
        case SelectionHandle::botLeft:
            return {r.left(), r.bottom()};
        case SelectionHandle::botMid:
            return {midX, r.bottom()};
        case SelectionHandle::botRight:
            return {r.right(), r.bottom()};
        case SelectionHandle::move:
            break;
    }
    return r.center();
}

std::array<QPointF, 8> AreaSelectionGeometry::handlePositions(const QRectF& rect) {
    std::array<QPointF, 8> positions;
    for (std::size_t i = 0; i < kGrips.size(); ++i) {
        positions[i] = handlePosition(kGrips[i], rect);
    }
    return positions;
}

QRectF AreaSelectionGeometry::handleHitRect(SelectionHandle handle, const QRectF& rect) {
    const QPointF centre = handlePosition(handle, rect);
    const qreal half = kHandleHitSize / 2;
    return {centre.x() - half, centre.y() - half, kHandleHitSize, kHandleHitSize};
}

QString AreaSelectionGeometry::sizeLabelText(const QSizeF& selection, qreal devicePixelRatio) {
    const qreal scale = devicePixelRatio > 0 ? devicePixelRatio : 2.0;
    const auto width = static_cast<long long>(selection.width() * scale);
    const auto height = static_cast<long long>(selection.height() * scale);
    return QString::number(width) + QStringLiteral(" \u00D7 ") + QString::number(height);
}

QRectF AreaSelectionGeometry::sizeLabelBox(const QRectF& selection, const QSizeF& textSize) {
    const QSizeF box(textSize.width() + kLabelPaddingWidth,
                     textSize.height() + kLabelPaddingHeight);
    const bool fitsAbove = selection.top() >= box.height() + kLabelGap;
    const qreal top =
        fitsAbove ? selection.top() - kLabelGap - box.height() : selection.bottom() + kLabelGap;
    return {QPointF(selection.left(), top), box};
}

QRect AreaSelectionGeometry::pixelRectForSelection(const QRectF& selection, const QSizeF& viewSize,
                                                   const QSize& imageSize) {
    if (viewSize.width() <= 0 || viewSize.height() <= 0) {
        return QRect(QPoint(0, 0), imageSize);
    }
    const qreal sx = imageSize.width() / viewSize.width();
    const qreal sy = imageSize.height() / viewSize.height();
    // A tiny epsilon keeps 300.0000001 from growing into 301 pixels.
    constexpr qreal kSlack = 1e-6;
    const int left = qFloor(selection.left() * sx + kSlack);
    const int top = qFloor(selection.top() * sy + kSlack);
    const int right = qCeil(selection.right() * sx - kSlack);
    const int bottom = qCeil(selection.bottom() * sy - kSlack);
    return QRect(QPoint(left, top), QPoint(right - 1, bottom - 1))
        .intersected(QRect(QPoint(0, 0), imageSize));
}

QVector<Annotation> AreaSelectionGeometry::annotationsInCut(const QVector<Annotation>& annotations,
                                                            const QRectF& selection,
                                                            const QSizeF& cutSize) {
    const CutMapping mapping = mappingFor(selection, cutSize);
    QVector<Annotation> mapped;
    mapped.reserve(annotations.size());
    for (const Annotation& annotation : annotations) {
        mapped.append(Annotation{mapKind(annotation.kind, mapping)});
    }
    return mapped;
}

std::optional<QRectF> AreaSelectionGeometry::cropInCut(const std::optional<QRectF>& crop,
                                                       const QRectF& selection,
                                                       const QSizeF& cutSize) {
    if (!crop) {
        return std::nullopt;
    }
    return mappingFor(selection, cutSize).rect(*crop);
}
