// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "area_capture/area_selection_geometry.h"

#include <gtest/gtest.h>

#include "support/test_support.h"

namespace {

using Geometry = AreaSelectionGeometry;

// Drags out a new selection from `from` to `to` and releases; returns whether
// it was confirmed.
bool dragOut(Geometry& geometry, QPointF from, QPointF to) {
    EXPECT_EQ(geometry.press(from, false), Geometry::Press::newSelection);
    geometry.drag(to);
    return geometry.release();
}

Geometry confirmedSelection(QRectF rect, QSizeF bounds = {1920, 1080}) {
    Geometry geometry(bounds);
    EXPECT_TRUE(dragOut(geometry, rect.topLeft(), rect.bottomRight()));
    return geometry;
}

void dragHandle(Geometry& geometry, QPointF grab, QPointF to) {
    ASSERT_EQ(geometry.press(grab, false), Geometry::Press::handleDrag);
    geometry.drag(to);
}

TEST(AreaSelectionDrag, ConfirmsOnlyWhenBothSidesExceedTen) {
    Geometry thin({1920, 1080});
    EXPECT_FALSE(dragOut(thin, {100, 100}, {110, 300}));
    EXPECT_FALSE(thin.isSelectionSet());
    EXPECT_EQ(thin.selection(), QRectF(100, 100, 10, 200));  // stays drawn

    Geometry small({1920, 1080});
    EXPECT_TRUE(dragOut(small, {100, 100}, {111, 111}));
    EXPECT_TRUE(small.isSelectionSet());

    // Dragging up and to the left gives the same normalised rectangle.
    Geometry backwards({1920, 1080});
    EXPECT_TRUE(dragOut(backwards, {400, 300}, {100, 100}));
    EXPECT_EQ(backwards.selection(), QRectF(100, 100, 300, 200));
}

TEST(AreaSelectionDrag, PressOutsideGripsStartsOverAndDrawingGoesToCanvas) {
    Geometry geometry = confirmedSelection({100, 100, 300, 200});
    EXPECT_EQ(geometry.press({600, 600}, true), Geometry::Press::forwardToCanvas);
    EXPECT_TRUE(geometry.isSelectionSet());
    EXPECT_FALSE(geometry.release());

    // A grip wins even while drawing is on.
    EXPECT_EQ(geometry.press({100, 100}, true), Geometry::Press::handleDrag);
    geometry.release();

    EXPECT_EQ(geometry.press({600, 600}, false), Geometry::Press::newSelection);
    EXPECT_FALSE(geometry.isSelectionSet());
    EXPECT_TRUE(geometry.selection().isEmpty());
}

TEST(AreaSelectionHandles, HitAreasAndCursors) {
    const Geometry geometry = confirmedSelection({100, 100, 300, 200});
    struct Case {
        QPointF point;
        std::optional<SelectionHandle> handle;
        Qt::CursorShape cursor;
    };
    const Case cases[] = {
        {{100, 100}, SelectionHandle::topLeft, Qt::ArrowCursor},
        {{92.5, 107.5}, SelectionHandle::topLeft, Qt::ArrowCursor},  // inside the 16 square
        {{250, 100}, SelectionHandle::topMid, Qt::SizeVerCursor},
        {{400, 100}, SelectionHandle::topRight, Qt::ArrowCursor},
        {{100, 200}, SelectionHandle::midLeft, Qt::SizeHorCursor},
        {{407, 200}, SelectionHandle::midRight, Qt::SizeHorCursor},
        {{100, 300}, SelectionHandle::botLeft, Qt::ArrowCursor},
        {{250, 300}, SelectionHandle::botMid, Qt::SizeVerCursor},
        {{400, 300}, SelectionHandle::botRight, Qt::ArrowCursor},
        {{200, 150}, SelectionHandle::move, Qt::OpenHandCursor},
        {{91, 100}, std::nullopt, Qt::CrossCursor},  // just outside the square
        {{600, 600}, std::nullopt, Qt::CrossCursor},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(geometry.handleAt(c.point), c.handle) << c.point.x() << "," << c.point.y();
        EXPECT_EQ(geometry.cursorAt(c.point, false), c.cursor) << c.point.x() << "," << c.point.y();
        EXPECT_EQ(geometry.cursorAt(c.point, true), Qt::CrossCursor);
    }
    EXPECT_TRUE(geometry.isOnGrip({400, 300}));
    EXPECT_FALSE(geometry.isOnGrip({200, 150}));  // the inside is not a grip

    // Grips of a tiny selection overlap: the first in order wins.
    const Geometry tiny = confirmedSelection({100, 100, 12, 12});
    EXPECT_EQ(tiny.handleAt({106, 106}), SelectionHandle::topLeft);

    // Nothing is a handle before a selection is confirmed.
    Geometry unconfirmed({1920, 1080});
    dragOut(unconfirmed, {100, 100}, {105, 300});
    EXPECT_EQ(unconfirmed.handleAt({100, 100}), std::nullopt);
    EXPECT_EQ(unconfirmed.cursorAt({100, 100}, false), Qt::CrossCursor);
}

TEST(AreaSelectionHandles, EdgeRules) {
    // The top-left grip dragged past the right edge pushes it: 20 wide.
    Geometry pushed = confirmedSelection({100, 100, 300, 200});
    dragHandle(pushed, {100, 100}, {500, 120});
    EXPECT_EQ(pushed.selection(), QRectF(500, 120, 20, 180));
    EXPECT_TRUE(pushed.release());

    // Moving against the left edge shrinks instead of stopping.
    Geometry moved = confirmedSelection({100, 100, 300, 200});
    dragHandle(moved, {250, 200}, {100, 210});
    EXPECT_EQ(moved.selection(), QRectF(0, 110, 250, 200));

    // Clamping comes after the minimum: at the right edge it can end narrower.
    Geometry squeezed = confirmedSelection({1800, 100, 100, 100});
    dragHandle(squeezed, {1800, 150}, {1910, 150});
    EXPECT_EQ(squeezed.selection(), QRectF(1910, 100, 10, 100));
    EXPECT_FALSE(squeezed.release());  // too thin to re-confirm, stays set
    EXPECT_TRUE(squeezed.isSelectionSet());

    // One-edge grips move only their edge; the bottom one clamps to the screen.
    Geometry stretched = confirmedSelection({100, 100, 300, 200});
    dragHandle(stretched, {250, 300}, {260, 5000});
    EXPECT_EQ(stretched.selection(), QRectF(100, 100, 300, 980));
}

TEST(AreaSelectionLabel, DevicePixelTextAndPlacement) {
    EXPECT_EQ(Geometry::sizeLabelText({300, 200}, 2.0), QStringLiteral("600 \u00D7 400"));
    EXPECT_EQ(Geometry::sizeLabelText({100, 50}, 2.0), QStringLiteral("200 \u00D7 100"));
    EXPECT_EQ(Geometry::sizeLabelText({100.7, 50.9}, 1.0), QStringLiteral("100 \u00D7 50"));
    EXPECT_EQ(Geometry::sizeLabelText({100, 50}, 0), QStringLiteral("200 \u00D7 100"));

    // Box: text + (12, 6); 8 above the selection, or 8 below when it does not fit.
    EXPECT_EQ(Geometry::sizeLabelBox({100, 100, 300, 200}, {60, 14}), QRectF(100, 72, 72, 20));
    EXPECT_EQ(Geometry::sizeLabelBox({100, 28, 300, 200}, {60, 14}), QRectF(100, 0, 72, 20));
    EXPECT_EQ(Geometry::sizeLabelBox({100, 27, 300, 200}, {60, 14}), QRectF(100, 235, 72, 20));
}

TEST(AreaSelectionSave, OnlyMoreThanTwoPointsASide) {
    Geometry tiny({1920, 1080});
    dragOut(tiny, {10, 10}, {12, 300});
    EXPECT_FALSE(tiny.canSave());
    Geometry enough({1920, 1080});
    dragOut(enough, {10, 10}, {13, 13});
    EXPECT_TRUE(enough.canSave());
}

TEST(AreaSelectionCut, PixelRectRoundsOutwardsAndStaysInside) {
    const QSize image(3840, 2160);
    EXPECT_EQ(Geometry::pixelRectForSelection({100, 50, 300, 200}, {1920, 1080}, image),
              QRect(200, 100, 600, 400));
    EXPECT_EQ(Geometry::pixelRectForSelection({10.25, 10.75, 5.5, 5}, {1920, 1080}, image),
              QRect(20, 21, 12, 11));
    EXPECT_EQ(Geometry::pixelRectForSelection({1900, 1000, 100, 100}, {1920, 1080}, image),
              QRect(3800, 2000, 40, 160));
    EXPECT_EQ(Geometry::pixelRectForSelection({0, 0, 10, 10}, {0, 0}, {64, 32}),
              QRect(0, 0, 64, 32));
}

TEST(AreaSelectionCut, AnnotationsMoveIntoTheCut) {
    const QRectF selection(100, 50, 300, 200);
    const QColor red(Qt::red);
    QFont font;
    font.setPointSizeF(18);
    const QVector<Annotation> drawn = {
        {Annotation::Stroke{{{100, 50}, {400, 250}}, 12.0, red, 0.4}},
        {Annotation::Arrow{{150, 100}, {500, 300}, red}},
        {Annotation::Rectangle{{110, 60, 20, 10}, red}},
        {Annotation::Text{QStringLiteral("hi"), {120, 70}, font, red}},
        {Annotation::Blur{{200, 100, 40, 40}}},
        {Annotation::Pixelate{{0, 0, 150, 100}}},
    };

    // Same size: a pure translation.
    const QVector<Annotation> same = Geometry::annotationsInCut(drawn, selection, {300, 200});
    EXPECT_EQ(std::get<Annotation::Stroke>(same[0].kind).points,
              (QVector<QPointF>{{0, 0}, {300, 200}}));
    EXPECT_EQ(std::get<Annotation::Stroke>(same[0].kind).width, 12.0);
    EXPECT_EQ(std::get<Annotation::Arrow>(same[1].kind).to, QPointF(400, 250));
    EXPECT_EQ(std::get<Annotation::Pixelate>(same[5].kind).rect, QRectF(-100, -50, 150, 100));

    // Twice as large across, 1.5 down: widths scale by the smaller factor,
    // fonts, colours and opacities stay.
    const QVector<Annotation> scaled = Geometry::annotationsInCut(drawn, selection, {600, 300});
    const auto& stroke = std::get<Annotation::Stroke>(scaled[0].kind);
    EXPECT_EQ(stroke.points, (QVector<QPointF>{{0, 0}, {600, 300}}));
    EXPECT_EQ(stroke.width, 18.0);
    EXPECT_EQ(stroke.opacity, 0.4);
    EXPECT_EQ(stroke.color, red);
    EXPECT_EQ(std::get<Annotation::Arrow>(scaled[1].kind).from, QPointF(100, 75));
    EXPECT_EQ(std::get<Annotation::Rectangle>(scaled[2].kind).rect, QRectF(20, 15, 40, 15));
    const auto& text = std::get<Annotation::Text>(scaled[3].kind);
    EXPECT_EQ(text.origin, QPointF(40, 30));
    EXPECT_EQ(text.font.pointSizeF(), 18.0);
    EXPECT_EQ(std::get<Annotation::Blur>(scaled[4].kind).rect, QRectF(200, 75, 80, 60));

    EXPECT_EQ(Geometry::cropInCut(QRectF(150, 100, 100, 50), selection, {600, 300}),
              QRectF(100, 75, 200, 75));
    EXPECT_EQ(Geometry::cropInCut(std::nullopt, selection, {600, 300}), std::nullopt);
    // A zero-sized selection keeps factors of 1.
    EXPECT_EQ(Geometry::cropInCut(QRectF(10, 10, 5, 5), QRectF(0, 0, 0, 0), {0, 0}),
              QRectF(10, 10, 5, 5));
}

}  // namespace
