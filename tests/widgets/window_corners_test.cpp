// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "widgets/window_corners.h"

#include <gtest/gtest.h>

#include <QtMath>

namespace {

using WindowCorners::roundedRegion;

// Each corner pixel, and the pixels along the two edges that meet there, for
// a window of `size`.
bool anyCornerCovered(const QRegion& region, const QSize& size) {
    const int right = size.width() - 1;
    const int bottom = size.height() - 1;
    return region.contains(QPoint(0, 0)) || region.contains(QPoint(right, 0)) ||
           region.contains(QPoint(0, bottom)) || region.contains(QPoint(right, bottom));
}

qint64 area(const QRegion& region) {
    qint64 pixels = 0;
    for (const QRect& rect : region) {
        pixels += qint64(rect.width()) * rect.height();
    }
    return pixels;
}

TEST(WindowCorners, ThePopoverKeepsItsEdgesAndLosesItsFourCorners) {
    const QSize popover(320, 420);
    const QRegion region = roundedRegion(popover, 10);
    EXPECT_FALSE(anyCornerCovered(region, popover));
    EXPECT_EQ(region.boundingRect(), QRect(QPoint(), popover));
    // The straight edges are whole from where the rounding ends.
    EXPECT_TRUE(region.contains(QRect(10, 0, 300, 1)));
    EXPECT_TRUE(region.contains(QRect(0, 10, 1, 400)));
    EXPECT_TRUE(region.contains(QRect(319, 10, 1, 400)));
    EXPECT_TRUE(region.contains(QRect(10, 419, 300, 1)));
    // Just inside the arc, on the diagonal of the top-left corner: covered;
    // just outside it: not.
    const int arcAtDiagonal = qFloor(10 * (1 - M_SQRT1_2));
    EXPECT_TRUE(region.contains(QPoint(arcAtDiagonal + 1, arcAtDiagonal + 1)));
    EXPECT_FALSE(region.contains(QPoint(arcAtDiagonal - 1, arcAtDiagonal - 1)));
    // Four quarter circles cut away, give or take the pixels along the arcs.
    EXPECT_NEAR(double(area(region)), 320.0 * 420.0 - (4 - M_PI) * 100, 2 * M_PI * 10);
}

TEST(WindowCorners, ThePillHasFullyRoundEndsAndIsMirrorSymmetric) {
    const QSize pill(320, 44);
    const QRegion region = roundedRegion(pill, 22);
    EXPECT_FALSE(anyCornerCovered(region, pill));
    // Only the middle rows reach the far left and right.
    EXPECT_TRUE(region.contains(QPoint(0, 21)));
    EXPECT_TRUE(region.contains(QPoint(319, 22)));
    EXPECT_FALSE(region.contains(QPoint(0, 15)));
    EXPECT_TRUE(region.contains(QRect(22, 0, 276, 44)));
    for (int y = 0; y < pill.height(); ++y) {
        for (int x = 0; x < pill.width(); ++x) {
            ASSERT_EQ(region.contains(QPoint(x, y)),
                      region.contains(QPoint(pill.width() - 1 - x, pill.height() - 1 - y)))
                << x << "," << y;
        }
    }
}

TEST(WindowCorners, OddSizesAndOversizedRadiiStayInsideTheWindow) {
    EXPECT_TRUE(roundedRegion(QSize(0, 0), 10).isEmpty());
    EXPECT_TRUE(roundedRegion(QSize(-5, 20), 10).isEmpty());
    EXPECT_EQ(roundedRegion(QSize(7, 3), 0), QRegion(0, 0, 7, 3));
    // A radius larger than half the window makes a round-ended shape.
    const QRegion capsule = roundedRegion(QSize(9, 5), 50);
    EXPECT_EQ(capsule.boundingRect(), QRect(0, 0, 9, 5));
    EXPECT_TRUE(capsule.contains(QPoint(4, 0)));
    EXPECT_FALSE(capsule.contains(QPoint(0, 0)));
    EXPECT_EQ(roundedRegion(QSize(1, 1), 10), QRegion(0, 0, 1, 1));
}

}  // namespace
