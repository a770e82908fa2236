// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "app/capture_start_gate.h"

#include <gtest/gtest.h>

namespace {

using Step = CaptureStartGate::Step;

TEST(CaptureStartGate, StartsAtOnceWhenNothingOfOursIsOnScreen) {
    EXPECT_EQ(CaptureStartGate({}, false).step(), Step::startNow);
    // No frame to wait for either: nothing left the screen.
    EXPECT_EQ(CaptureStartGate({}, true).step(), Step::startNow);
}

TEST(CaptureStartGate, WaitsUntilEveryLeavingWindowIsUnmapped) {
    CaptureStartGate gate({0x400010, 0x400020}, false);
    EXPECT_EQ(gate.step(), Step::waitForUnmaps);
    EXPECT_EQ(gate.windowUnmapped(0x999999), Step::waitForUnmaps);  // not one of ours
    EXPECT_EQ(gate.windowUnmapped(0x400020), Step::waitForUnmaps);
    EXPECT_EQ(gate.windowUnmapped(0x400020), Step::waitForUnmaps);  // reported twice
    EXPECT_EQ(gate.windowUnmapped(0x400010), Step::startNow);
}

TEST(CaptureStartGate, WithACompositorWaitsOneFrameAfterTheLastUnmap) {
    CaptureStartGate gate({0x400010}, true);
    // A frame drawn while the panel is still mapped does not count.
    EXPECT_EQ(gate.compositorFramePassed(), Step::waitForUnmaps);
    EXPECT_EQ(gate.windowUnmapped(0x400010), Step::waitForCompositorFrame);
    EXPECT_EQ(gate.compositorFramePassed(), Step::startNow);
}

TEST(CaptureStartGate, TheDeadlineStartsWhateverIsOutstanding) {
    CaptureStartGate unmapsOutstanding({0x400010}, false);
    EXPECT_EQ(unmapsOutstanding.deadlinePassed(), Step::startNow);
    EXPECT_EQ(unmapsOutstanding.windowUnmapped(0x400010), Step::startNow);

    CaptureStartGate frameOutstanding({0x400010}, true);
    frameOutstanding.windowUnmapped(0x400010);
    EXPECT_EQ(frameOutstanding.deadlinePassed(), Step::startNow);
}

}  // namespace
