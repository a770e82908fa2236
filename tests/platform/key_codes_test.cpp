// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/key_codes.h"

#include <gtest/gtest.h>

namespace {

TEST(KeyCodes, EveryTableEntryRoundTrips) {
    for (quint32 code = 0; code < 128; ++code) {
        if (const auto evdev = KeyCodes::evdevFromKeyCode(code)) {
            EXPECT_EQ(KeyCodes::keyCodeFromEvdev(*evdev), code) << code;
        }
    }
}

TEST(KeyCodes, KeysWithoutAPositionCodeAreStoredAbove1000) {
    EXPECT_EQ(KeyCodes::keyCodeFromXKeycode(107), 1099u);  // Print
    EXPECT_EQ(KeyCodes::xKeycodeFromKeyCode(1099), 107u);
    EXPECT_FALSE(KeyCodes::evdevFromKeyCode(52));  // a position code with no key here
}

}  // namespace
