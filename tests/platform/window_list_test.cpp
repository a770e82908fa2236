// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/window_list.h"

#include <gtest/gtest.h>

#include "platform/x11/x11_window_list.h"

namespace {

using Kind = X11WindowCandidate::Kind;

constexpr qint64 kOwnPid = 4242;
const X11OwnWindows kOwn{kOwnPid, 0x01c00000, 0x001fffff};

X11WindowCandidate window(quint32 id, const QRect& frame, qint64 pid = 100,
                          Kind kind = Kind::normal) {
    X11WindowCandidate candidate;
    candidate.windowId = id;
    candidate.frame = frame;
    candidate.processId = pid;
    candidate.kind = kind;
    candidate.viewable = true;
    return candidate;
}

std::vector<WindowInfo> infos(const std::vector<X11WindowCandidate>& candidates) {
    std::vector<WindowInfo> result;
    for (const X11WindowCandidate& candidate : candidates) {
        result.push_back({candidate.windowId, candidate.frame, {}, {}});
    }
    return result;
}

std::vector<quint32> ids(const std::vector<X11WindowCandidate>& candidates) {
    std::vector<quint32> result;
    for (const X11WindowCandidate& candidate : candidates) {
        result.push_back(candidate.windowId);
    }
    return result;
}

TEST(WindowList, StackingIsReadFrontToBackAndTheFrontWindowWinsTheHit) {
    // _NET_CLIENT_LIST_STACKING lists the bottom window first.
    const std::vector<X11WindowCandidate> bottomToTop{window(0x400001, {0, 0, 800, 600}),
                                                      window(0x500001, {400, 300, 800, 600}),
                                                      window(0x600001, {1000, 700, 300, 200})};
    const auto frontToBack = x11_window_list::pickableFrontToBack(bottomToTop, kOwn);
    EXPECT_EQ(ids(frontToBack), (std::vector<quint32>{0x600001, 0x500001, 0x400001}));

    const auto listed = infos(frontToBack);
    EXPECT_EQ(window_list::frontWindowAt(listed, {500, 400})->windowId, 0x500001u);
    EXPECT_EQ(window_list::frontWindowAt(listed, {100, 100})->windowId, 0x400001u);
    EXPECT_EQ(window_list::frontWindowAt(listed, {1100, 750})->windowId, 0x600001u);
    // The frame's last pixel belongs to it, the next one does not.
    EXPECT_EQ(window_list::frontWindowAt(listed, {1199, 899})->windowId, 0x600001u);
    EXPECT_FALSE(window_list::frontWindowAt(listed, {1300, 900}));
    EXPECT_FALSE(window_list::frontWindowAt({}, {0, 0}));
}

TEST(WindowList, OnlyOtherProgramsNormalWindowsAndDialogsOnScreenArePickable) {
    X11WindowCandidate minimised = window(0x700001, {0, 0, 100, 100});
    minimised.hidden = true;
    X11WindowCandidate unmapped = window(0x700002, {0, 0, 100, 100});
    unmapped.viewable = false;
    const std::vector<X11WindowCandidate> bottomToTop{
        window(0x400001, {0, 0, 100, 100}),
        window(0x400002, {0, 0, 100, 100}, 100, Kind::dialog),
        window(0x400003, {0, 0, 100, 100}, 0),  // no _NET_WM_PID: still another program's
        window(0x400004, {0, 0, 1920, 24}, 100, Kind::other),  // a dock
        window(0x400005, {0, 0, 100, 100}, kOwnPid),           // ours by process
        window(0x01c00007, {0, 0, 100, 100}, 0),               // ours by connection
        minimised,
        unmapped,
        window(0x400006, {}, 100),  // no geometry: gone while asked
    };
    EXPECT_EQ(ids(x11_window_list::pickableFrontToBack(bottomToTop, kOwn)),
              (std::vector<quint32>{0x400003, 0x400002, 0x400001}));
}

TEST(WindowList, TheDisplayShowingMostOfAWindowIsChosen) {
    const QList<QRect> displays{{0, 0, 1920, 1080}, {1920, 0, 1280, 1024}};
    // 220 pixels wide on the left display, 380 on the right one.
    EXPECT_EQ(window_list::displayShowingMost({1700, 100, 600, 400}, displays, 0), 1);
    EXPECT_EQ(window_list::displayShowingMost({1500, 100, 600, 400}, displays, 1), 0);
    // Equal shares: the first display.
    EXPECT_EQ(window_list::displayShowingMost({1620, 100, 600, 400}, displays, 1), 0);
    // On no display: the main one.
    EXPECT_EQ(window_list::displayShowingMost({4000, 100, 600, 400}, displays, 1), 1);
    EXPECT_EQ(window_list::displayShowingMost({}, displays, 1), 1);
}

}  // namespace
