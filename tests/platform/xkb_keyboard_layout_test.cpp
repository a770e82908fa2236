// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/x11/xkb_keyboard_layout.h"

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <QProcess>

namespace {

TEST(XkbKeyboardLayout, UsLayoutLabelsLettersDigitsAndNamedKeys) {
    const auto layout = XkbKeyboardLayout::fromLayoutName("us");
    ASSERT_TRUE(layout);
    EXPECT_EQ(layout->keyLabel(0), "A");
    EXPECT_EQ(layout->keyLabel(16), "Y");
    EXPECT_EQ(layout->keyLabel(18), "1");
    EXPECT_EQ(layout->keyLabel(24), "=");
    EXPECT_EQ(layout->keyLabel(36), "↩");  // Return has no printable character
    EXPECT_EQ(layout->keyLabel(49), "Space");
    EXPECT_EQ(layout->keyLabel(53), "(53)");  // Escape
    EXPECT_EQ(layout->keyLabel(999), "(999)");
}

TEST(XkbKeyboardLayout, GermanLayoutShowsItsOwnCharacters) {
    const auto layout = XkbKeyboardLayout::fromLayoutName("de");
    ASSERT_TRUE(layout);
    EXPECT_EQ(layout->keyLabel(16), "Z");  // the key labelled Y on a US keyboard
    EXPECT_EQ(layout->keyLabel(6), "Y");
    EXPECT_EQ(layout->keyLabel(41), "Ö");
}

// Against the X server of the test desktop: switching its layout changes the
// labels after a refresh.
TEST(XkbKeyboardLayout, FollowsTheServersLayout) {
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        GTEST_SKIP() << "needs an X server";
    }
    int screen = 0;
    xcb_connection_t* connection = xcb_connect(nullptr, &screen);
    ASSERT_FALSE(xcb_connection_has_error(connection));
    ASSERT_EQ(QProcess::execute("setxkbmap", {"us"}), 0);
    const auto layout = XkbKeyboardLayout::fromX11(connection);
    ASSERT_TRUE(layout);
    EXPECT_EQ(layout->keyLabel(16), "Y");

    ASSERT_EQ(QProcess::execute("setxkbmap", {"de"}), 0);
    layout->refresh();
    EXPECT_EQ(layout->keyLabel(16), "Z");
    QProcess::execute("setxkbmap", {"us"});
    xcb_disconnect(connection);
}

}  // namespace
