// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSize>
#include <QSizeF>
#include <QString>
#include <QVector>
#include <Qt>
#include <array>
#include <optional>

#include "annotation/annotation.h"

// The grips of a selection, in hit-test order; `move` is the inside.
enum class SelectionHandle {
    topLeft,
    topMid,
    topRight,
    midLeft,
    midRight,
    botLeft,
    botMid,
    botRight,
    move
};

// The selection of the area editor and the rules of its gestures, in overlay
// points (top-left origin). Pure geometry: the overlay view feeds it mouse
// points and draws what it answers.
class AreaSelectionGeometry {
public:
    static constexpr qreal kMinimumSide = 20.0;    // after a handle drag
    static constexpr qreal kConfirmSide = 10.0;    // both sides must exceed this
    static constexpr qreal kSaveSide = 2.0;        // a side this small saves nothing
    static constexpr qreal kHandleRadius = 5.0;    // drawn circle
    static constexpr qreal kHandleHitSize = 16.0;  // square hit area
    static constexpr qreal kLabelGap = 8.0;
    static constexpr qreal kLabelPaddingWidth = 12.0;
    static constexpr qreal kLabelPaddingHeight = 6.0;

    // What a mouse press started.
    enum class Press { handleDrag, newSelection, forwardToCanvas };

    explicit AreaSelectionGeometry(const QSizeF& bounds) : bounds_(bounds) {}

    QSizeF bounds() const { return bounds_; }
    QRectF selection() const { return selection_; }
    bool isSelectionSet() const { return selectionSet_; }
    std::optional<SelectionHandle> activeHandle() const { return activeHandle_; }

    // Selects the whole overlay, confirmed.
    void selectAll();

    // A press at `p`: a handle drag when a confirmed selection has a handle
    // there; otherwise the canvas's when drawing is on; otherwise a new
    // selection (which un-confirms and empties any confirmed one).
    Press press(const QPointF& p, bool drawingEnabled);
    // Moves the dragged handle or the new selection's far corner to `p`.
    void drag(const QPointF& p);
    // Ends a gesture; true when it confirmed (or re-confirmed) the selection.
    bool release();

    // The handle (or `move`) under `p` of a confirmed selection.
    std::optional<SelectionHandle> handleAt(const QPointF& p) const;
    // Whether `p` is on one of the eight grips of a confirmed selection (the
    // canvas above the overlay lets such presses through).
    bool isOnGrip(const QPointF& p) const;
    // The cursor the overlay shows at `p`.
    Qt::CursorShape cursorAt(const QPointF& p, bool drawingEnabled) const;

    // Whether Return writes a file for this selection.
    bool canSave() const;

    static QPointF handlePosition(SelectionHandle handle, const QRectF& rect);
    static std::array<QPointF, 8> handlePositions(const QRectF& rect);
    static QRectF handleHitRect(SelectionHandle handle, const QRectF& rect);

    // "600 × 400": the selection's size in device pixels.
    static QString sizeLabelText(const QSizeF& selection, qreal devicePixelRatio);
    // Where the size label's box goes: above the selection when it fits,
    // otherwise below it; left-aligned with it.
    static QRectF sizeLabelBox(const QRectF& selection, const QSizeF& textSize);

    // The selection's rectangle in the frozen image's pixels, rounded outwards
    // and kept inside the image.
    static QRect pixelRectForSelection(const QRectF& selection, const QSizeF& viewSize,
                                       const QSize& imageSize);
    // Annotations and crop drawn on the overlay, moved into the coordinates of
    // a cut of `cutSize` points taken at `selection`.
    static QVector<Annotation> annotationsInCut(const QVector<Annotation>& annotations,
                                                const QRectF& selection, const QSizeF& cutSize);
    static std::optional<QRectF> cropInCut(const std::optional<QRectF>& crop,
                                           const QRectF& selection, const QSizeF& cutSize);

private:
    void dragHandle(const QPointF& p);

    QSizeF bounds_;
    QRectF selection_;
    bool selectionSet_ = false;
    std::optional<QPointF> dragStart_;
    std::optional<SelectionHandle> activeHandle_;
    QRectF dragOriginRect_;
    QPointF dragOriginPoint_;
};
