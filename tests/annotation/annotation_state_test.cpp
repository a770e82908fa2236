// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// The annotation document: undo order with crops among the shapes, crop
// replacement and its undo, reset, colour changes and the two kinds of stroke.

#include "annotation/annotation_state.h"

#include <gtest/gtest.h>

#include <QSignalSpy>

namespace {

Annotation rectangle(qreal x, const QColor& color = Qt::red) {
    return {Annotation::Rectangle{QRectF(x, 0, 10, 10), color}};
}

Annotation crop(const QRectF& rect) {
    return {Annotation::Crop{rect}};
}

}  // namespace

TEST(AnnotationStateTest, StartsEmptyWithThePencilAndDrawingOff) {
    AnnotationState state;
    EXPECT_EQ(state.activeTool(), AnnotationTool::pencil);
    EXPECT_EQ(state.currentColor(), AnnotationState::kInitialColor);
    EXPECT_TRUE(state.annotations().isEmpty());
    EXPECT_FALSE(state.cropRect().has_value());
    EXPECT_FALSE(state.isDrawingEnabled());
}

TEST(AnnotationStateTest, UndoTakesBackActionsNewestFirstWithCropsInTheirPlace) {
    AnnotationState state;
    state.add(rectangle(1));
    state.add(crop(QRectF(5, 5, 50, 50)));
    state.add(rectangle(2));
    ASSERT_EQ(state.annotations().size(), 2);  // the crop never enters the list

    state.undo();
    ASSERT_EQ(state.annotations().size(), 1);
    EXPECT_EQ(state.annotations().first(), rectangle(1));
    EXPECT_TRUE(state.cropRect().has_value());

    state.undo();  // the crop came after the first rectangle, so it goes first
    EXPECT_FALSE(state.cropRect().has_value());
    ASSERT_EQ(state.annotations().size(), 1);
    EXPECT_EQ(state.annotations().first(), rectangle(1));

    state.undo();
    EXPECT_TRUE(state.annotations().isEmpty());

    QSignalSpy changes(&state, &AnnotationState::changed);
    state.undo();  // nothing left: a no-op
    EXPECT_TRUE(state.annotations().isEmpty());
    EXPECT_FALSE(state.cropRect().has_value());
    EXPECT_EQ(changes.count(), 0);
}

TEST(AnnotationStateTest, UndoRightAfterACropKeepsTheShapesDrawnBeforeIt) {
    AnnotationState state;
    state.add(rectangle(1));
    state.add(crop(QRectF(0, 0, 40, 40)));
    state.undo();
    EXPECT_FALSE(state.cropRect().has_value());
    ASSERT_EQ(state.annotations().size(), 1);
    EXPECT_EQ(state.annotations().first(), rectangle(1));
}

TEST(AnnotationStateTest, SecondCropReplacesTheFirstAndUndoBringsTheFirstBack) {
    AnnotationState state;
    state.add(crop(QRectF(0, 0, 20, 20)));
    state.add(rectangle(1));
    state.add(crop(QRectF(40, 30, -30, -20)));  // dragged backwards: stored normalised
    ASSERT_TRUE(state.cropRect().has_value());
    EXPECT_EQ(*state.cropRect(), QRectF(10, 10, 30, 20));

    state.undo();
    ASSERT_TRUE(state.cropRect().has_value());
    EXPECT_EQ(*state.cropRect(), QRectF(0, 0, 20, 20));
    EXPECT_EQ(state.annotations().size(), 1);

    state.undo();
    EXPECT_TRUE(state.annotations().isEmpty());
    EXPECT_TRUE(state.cropRect().has_value());

    state.undo();
    EXPECT_FALSE(state.cropRect().has_value());
}

TEST(AnnotationStateTest, ResetEmptiesTheDocumentAndTurnsDrawingOff) {
    AnnotationState state;
    state.selectTool(AnnotationTool::blur);
    ASSERT_TRUE(state.isDrawingEnabled());
    state.add(rectangle(1));
    state.add(crop(QRectF(0, 0, 20, 20)));
    QSignalSpy drawing(&state, &AnnotationState::drawingEnabledChanged);

    state.reset();
    EXPECT_TRUE(state.annotations().isEmpty());
    EXPECT_FALSE(state.cropRect().has_value());
    EXPECT_EQ(state.activeTool(), AnnotationTool::pencil);
    EXPECT_FALSE(state.isDrawingEnabled());
    ASSERT_EQ(drawing.count(), 1);
    EXPECT_FALSE(drawing.first().first().toBool());

    state.selectTool(AnnotationTool::pencil);
    EXPECT_TRUE(state.isDrawingEnabled());

    // Nothing from before the reset can be undone back into view.
    state.add(rectangle(3));
    state.undo();
    state.undo();
    state.undo();
    EXPECT_TRUE(state.annotations().isEmpty());
    EXPECT_FALSE(state.cropRect().has_value());
}

TEST(AnnotationStateTest, ColourChangesLeaveCommittedShapesAlone) {
    AnnotationState state;
    state.add(rectangle(1, state.currentColor()));
    QSignalSpy colours(&state, &AnnotationState::currentColorChanged);
    state.setCurrentColor(Qt::blue);
    EXPECT_EQ(colours.count(), 1);
    EXPECT_EQ(state.currentColor(), QColor(Qt::blue));
    EXPECT_EQ(state.annotations().first(), rectangle(1, AnnotationState::kInitialColor));
}

TEST(AnnotationStateTest, HighlighterAndPencilMarksAreBothStrokes) {
    const Annotation pencil{Annotation::Stroke{{{0, 0}, {5, 5}}, 2.0, Qt::red, 1.0}};
    const Annotation highlight{Annotation::Stroke{{{0, 0}, {5, 5}}, 12.0, Qt::red, 0.4}};
    AnnotationState state;
    state.add(pencil);
    state.add(highlight);
    ASSERT_EQ(state.annotations().size(), 2);
    for (const Annotation& mark : state.annotations()) {
        EXPECT_TRUE(std::holds_alternative<Annotation::Stroke>(mark.kind));
    }
    EXPECT_NE(state.annotations()[0], state.annotations()[1]);
}

TEST(AnnotationStateTest, AddAndUndoAnnounceOnlyWhatTheyChange) {
    AnnotationState state;
    QSignalSpy list(&state, &AnnotationState::annotationsChanged);
    QSignalSpy crops(&state, &AnnotationState::cropRectChanged);
    state.add(rectangle(1));
    state.add(crop(QRectF(0, 0, 8, 8)));
    EXPECT_EQ(list.count(), 1);
    EXPECT_EQ(crops.count(), 1);
    state.undo();  // the crop
    EXPECT_EQ(list.count(), 1);
    EXPECT_EQ(crops.count(), 2);
    state.undo();  // the rectangle
    EXPECT_EQ(list.count(), 2);
    EXPECT_EQ(crops.count(), 2);
}
