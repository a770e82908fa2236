// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "widgets/popover_placement.h"

#include <gtest/gtest.h>

namespace {

using PopoverPlacement::pillFrame;
using PopoverPlacement::popoverFrame;

// The test desktop: 1920 × 1080 with a 24-pixel tray panel at the top.
const QRect kAvailable(0, 24, 1920, 1056);

TEST(PopoverPlacement, HangsUnderATopTrayIconCentredOnIt) {
    const QRect icon(900, 1, 22, 22);
    const QRect frame = popoverFrame(icon, {}, kAvailable);
    EXPECT_EQ(frame.size(), QSize(320, 420));
    EXPECT_EQ(frame.top(), 24);
    EXPECT_EQ(frame.center().x(), icon.center().x());
}

TEST(PopoverPlacement, StaysInsideTheScreenNearItsRightEdge) {
    const QRect frame = popoverFrame(QRect(1897, 1, 22, 22), {}, kAvailable);
    EXPECT_EQ(frame.right(), 1919);
    EXPECT_TRUE(kAvailable.contains(frame));
}

TEST(PopoverPlacement, SitsAboveABottomTrayWithRoomForThePill) {
    const QRect bottomAvailable(0, 0, 1920, 1056);
    const QRect icon(1897, 1057, 22, 22);
    const QRect popover = popoverFrame(icon, {}, bottomAvailable);
    const QRect pill = pillFrame(popover, bottomAvailable);
    EXPECT_LT(popover.bottom(), icon.top());
    EXPECT_TRUE(bottomAvailable.contains(popover));
    EXPECT_TRUE(bottomAvailable.contains(pill));
    EXPECT_FALSE(pill.intersects(popover));
}

TEST(PopoverPlacement, FollowsThePointerWhenTheTrayGivesNoGeometry) {
    const QRect frame = popoverFrame(QRect(), QPoint(700, 300), kAvailable);
    EXPECT_EQ(frame.top(), 300);
    EXPECT_EQ(frame.center().x(), 700);
    const QRect corner = popoverFrame(QRect(), QPoint(5, 1070), kAvailable);
    EXPECT_TRUE(kAvailable.contains(corner));
}

TEST(PillPlacement, CentredUnderThePopoverWithASixPixelGap) {
    const QRect popover(800, 24, 320, 420);
    const QRect pill = pillFrame(popover, kAvailable);
    EXPECT_EQ(pill.size(), QSize(320, 44));
    EXPECT_EQ(pill.left(), 800);
    EXPECT_EQ(pill.top(), popover.bottom() + 1 + 6);
}

TEST(PillPlacement, NeverLeavesTheBottomOfAShortScreen) {
    const QRect shortScreen(0, 24, 1024, 440);
    const QRect popover = popoverFrame(QRect(500, 1, 22, 22), {}, shortScreen);
    const QRect pill = pillFrame(popover, shortScreen);
    EXPECT_EQ(pill.bottom(), shortScreen.bottom());
    EXPECT_TRUE(shortScreen.contains(pill));
}

}  // namespace
