// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// What each tool makes of a drag (the one rule shared by the canvas's live
// preview and its commit) and the single-letter keys that pick the tools.

#include "annotation/annotation_tool.h"

#include <gtest/gtest.h>

#include <QSet>
#include <cmath>
#include <numbers>

namespace {

ToolGesture drag(AnnotationTool tool, QPointF from, QPointF to,
                 Qt::KeyboardModifiers modifiers = {}) {
    return {tool, {from, (from + to) / 2, to}, modifiers, Qt::red};
}

template <typename Kind>
std::optional<Kind> shapeAs(const ToolGesture& gesture) {
    const std::optional<Annotation> shape = annotationForGesture(gesture);
    if (!shape) {
        return std::nullopt;
    }
    if (const auto* kind = std::get_if<Kind>(&shape->kind)) {
        return *kind;
    }
    return std::nullopt;
}

void expectNear(const QPointF& actual, const QPointF& expected) {
    EXPECT_NEAR(actual.x(), expected.x(), 1e-9);
    EXPECT_NEAR(actual.y(), expected.y(), 1e-9);
}

}  // namespace

TEST(ToolGestureTest, PencilAndHighlighterKeepEveryPointAsAStroke) {
    const ToolGesture pencilDrag = drag(AnnotationTool::pencil, {10, 10}, {50, 30});
    const auto pencil = shapeAs<Annotation::Stroke>(pencilDrag);
    ASSERT_TRUE(pencil);
    EXPECT_EQ(pencil->points, pencilDrag.points);
    EXPECT_EQ(pencil->width, 2.0);
    EXPECT_EQ(pencil->opacity, 1.0);
    EXPECT_EQ(pencil->color, QColor(Qt::red));

    const auto highlight = shapeAs<Annotation::Stroke>(
        {AnnotationTool::highlighter, {{7, 7}, {7, 7}}, {}, Qt::yellow});
    ASSERT_TRUE(highlight);  // a click is a stroke of two equal points
    EXPECT_EQ(highlight->width, 12.0);
    EXPECT_EQ(highlight->opacity, 0.4);

    EXPECT_FALSE(annotationForGesture({AnnotationTool::pencil, {{7, 7}}, {}, Qt::red}));
    EXPECT_FALSE(annotationForGesture({AnnotationTool::pencil, {}, {}, Qt::red}));
}

TEST(ToolGestureTest, ArrowFollowsTheEndAndSnapsToEighthTurnsWithShift) {
    const auto free =
        shapeAs<Annotation::Arrow>(drag(AnnotationTool::arrow, {100, 100}, {150, 140}));
    ASSERT_TRUE(free);
    EXPECT_EQ(free->from, QPointF(100, 100));
    EXPECT_EQ(free->to, QPointF(150, 140));

    // 38.7° becomes 45°, the length stays.
    const qreal length = std::hypot(50.0, 40.0);
    const auto diagonal = shapeAs<Annotation::Arrow>(
        drag(AnnotationTool::arrow, {100, 100}, {150, 140}, Qt::ShiftModifier));
    ASSERT_TRUE(diagonal);
    expectNear(diagonal->to, QPointF(100, 100) + QPointF(1, 1) * (length / std::numbers::sqrt2));

    // About 170° becomes 180°; about -80° becomes -90° (straight up).
    const auto left = shapeAs<Annotation::Arrow>(
        drag(AnnotationTool::arrow, {100, 100}, {40, 110}, Qt::ShiftModifier));
    ASSERT_TRUE(left);
    expectNear(left->to, QPointF(100 - std::hypot(60.0, 10.0), 100));
    const auto up = shapeAs<Annotation::Arrow>(
        drag(AnnotationTool::arrow, {100, 100}, {105, 40}, Qt::ShiftModifier));
    ASSERT_TRUE(up);
    expectNear(up->to, QPointF(100, 100 - std::hypot(5.0, 60.0)));

    // Other modifiers do not snap.
    const auto control = shapeAs<Annotation::Arrow>(
        drag(AnnotationTool::arrow, {100, 100}, {150, 140}, Qt::ControlModifier));
    ASSERT_TRUE(control);
    EXPECT_EQ(control->to, QPointF(150, 140));

    EXPECT_FALSE(annotationForGesture(drag(AnnotationTool::arrow, {70, 70}, {70, 70})));
}

TEST(ToolGestureTest, RectangleNeedsBothSidesOverTwoAndShiftSquaresFromTheMinimumCorner) {
    EXPECT_FALSE(annotationForGesture(drag(AnnotationTool::rectangle, {10, 10}, {12, 60})));
    const auto small =
        shapeAs<Annotation::Rectangle>(drag(AnnotationTool::rectangle, {10, 10}, {13, 13}));
    ASSERT_TRUE(small);
    EXPECT_EQ(small->rect, QRectF(10, 10, 3, 3));
    EXPECT_EQ(small->color, QColor(Qt::red));

    const auto square = shapeAs<Annotation::Rectangle>(
        drag(AnnotationTool::rectangle, {200, 200}, {150, 120}, Qt::ShiftModifier));
    ASSERT_TRUE(square);
    EXPECT_EQ(square->rect, QRectF(150, 120, 50, 50));
}

TEST(ToolGestureTest, RegionsAndCropNeedBothSidesOverFourAndIgnoreShift) {
    EXPECT_FALSE(annotationForGesture(drag(AnnotationTool::blur, {10, 10}, {14, 60})));
    const auto blur = shapeAs<Annotation::Blur>(drag(AnnotationTool::blur, {60, 10}, {10, 15}));
    ASSERT_TRUE(blur);
    EXPECT_EQ(blur->rect, QRectF(10, 10, 50, 5));

    const auto pixelate = shapeAs<Annotation::Pixelate>(
        drag(AnnotationTool::pixelate, {100, 100}, {130, 140}, Qt::ShiftModifier));
    ASSERT_TRUE(pixelate);
    EXPECT_EQ(pixelate->rect, QRectF(100, 100, 30, 40));

    EXPECT_FALSE(annotationForGesture(drag(AnnotationTool::crop, {20, 20}, {24, 100})));
    const auto crop = shapeAs<Annotation::Crop>(drag(AnnotationTool::crop, {220, 120}, {20, 20}));
    ASSERT_TRUE(crop);
    EXPECT_EQ(crop->rect, QRectF(20, 20, 200, 100));
}

TEST(ToolGestureTest, TextMakesNoShapeFromADrag) {
    EXPECT_FALSE(annotationForGesture(drag(AnnotationTool::text, {10, 10}, {100, 100})));
}

TEST(ToolKeyTest, EveryToolHasItsOwnLetterAndTheLetterLeadsBack) {
    QSet<int> keys;
    for (const AnnotationTool tool : kAllAnnotationTools) {
        const QString name = annotationToolKeyName(tool);
        ASSERT_EQ(name.size(), 1) << paletteLabel(tool).toStdString();
        const int key = name.at(0).unicode();  // letters' key codes are their capitals
        keys.insert(key);
        EXPECT_EQ(annotationToolForKey(key), tool) << name.toStdString();
    }
    EXPECT_EQ(keys.size(), static_cast<qsizetype>(kAllAnnotationTools.size()));
}

TEST(ToolKeyTest, OtherKeysPickNoTool) {
    for (const int key : {int(Qt::Key_Z), int(Qt::Key_S), int(Qt::Key_Return), int(Qt::Key_Escape),
                          int(Qt::Key_Shift), int(Qt::Key_1), int('p'), 0, -1}) {
        EXPECT_FALSE(annotationToolForKey(key)) << key;
    }
}
