// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "widgets/window_outline.h"

#include <gtest/gtest.h>

namespace {

TEST(WindowOutline, TheShapeIsTheRoundedStrokeAloneWithAnEmptyMiddle) {
    const QSize size(400, 300);
    // The recording outline: a 3-pixel line 2 pixels inside, corner radius 10.
    const QRegion ring = WindowOutline::ringRegion(size, 2, 3, 10);
    // Along the straight edges the stroke (0.5 to 3.5 from the edge) covers
    // pixels 1, 2 and 3 on every side.
    for (int x : {1, 2, 3}) {
        EXPECT_TRUE(ring.contains(QPoint(x, 150))) << x;
        EXPECT_TRUE(ring.contains(QPoint(150, x))) << x;
        EXPECT_TRUE(ring.contains(QPoint(size.width() - 1 - x, 150))) << x;
        EXPECT_TRUE(ring.contains(QPoint(150, size.height() - 1 - x))) << x;
    }
    EXPECT_FALSE(ring.contains(QPoint(0, 150)));
    EXPECT_FALSE(ring.contains(QPoint(4, 150)));
    EXPECT_FALSE(ring.contains(QPoint(200, 150)));
    // Rounded: the stroke bends around the corner's centre (12, 12), 8.5 to
    // 11.5 pixels from it; the window's corner and the inside of the bend
    // are not part of it.
    EXPECT_FALSE(ring.contains(QPoint(1, 1)));
    EXPECT_FALSE(ring.contains(QPoint(2, 2)));
    EXPECT_TRUE(ring.contains(QPoint(4, 4)));
    EXPECT_TRUE(ring.contains(QPoint(5, 5)));
    EXPECT_FALSE(ring.contains(QPoint(7, 7)));
    // Symmetric about both axes.
    for (const QRect& rect : ring) {
        const QRect mirrored(size.width() - rect.right() - 1, size.height() - rect.bottom() - 1,
                             rect.width(), rect.height());
        EXPECT_TRUE(ring.intersected(mirrored) == QRegion(mirrored));
    }
    // Made of a handful of bands, not one rectangle per row.
    EXPECT_LT(ring.rectCount(), 100);
}

TEST(WindowOutline, AThinnerStrokeAndDegenerateSizesGiveWhatFits) {
    // The capture outline's 2.5-pixel line (0.75 to 3.25) covers pixels 1 and 2.
    const QRegion thin = WindowOutline::ringRegion({200, 100}, 2, 2.5, 10);
    EXPECT_TRUE(thin.contains(QPoint(1, 50)));
    EXPECT_TRUE(thin.contains(QPoint(2, 50)));
    EXPECT_FALSE(thin.contains(QPoint(3, 50)));
    EXPECT_TRUE(WindowOutline::ringRegion({}, 2, 3, 10).isEmpty());
    EXPECT_TRUE(WindowOutline::ringRegion({100, 100}, 2, 0, 10).isEmpty());
    // A window smaller than the stroke is all stroke, never a crash.
    EXPECT_FALSE(WindowOutline::ringRegion({6, 6}, 2, 3, 10).isEmpty());
}

}  // namespace
