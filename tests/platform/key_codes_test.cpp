#include "platform/key_codes.h"

#include <gtest/gtest.h>

namespace {

TEST(KeyCodes, DefaultBindingKeysMapToTheirX11Keycodes) {
    // X keycodes of the digit row on every PC keyboard: "1" is 10 … "7" is 16.
    EXPECT_EQ(KeyCodes::xKeycodeFromKeyCode(18), 10u);
    EXPECT_EQ(KeyCodes::xKeycodeFromKeyCode(19), 11u);
    EXPECT_EQ(KeyCodes::xKeycodeFromKeyCode(20), 12u);
    EXPECT_EQ(KeyCodes::xKeycodeFromKeyCode(21), 13u);
    EXPECT_EQ(KeyCodes::xKeycodeFromKeyCode(22), 15u);
    EXPECT_EQ(KeyCodes::xKeycodeFromKeyCode(26), 16u);
    EXPECT_EQ(KeyCodes::xKeycodeFromKeyCode(36), 36u);  // Return
    EXPECT_EQ(KeyCodes::xKeycodeFromKeyCode(49), 65u);  // Space
    EXPECT_EQ(KeyCodes::xKeycodeFromKeyCode(53), 9u);   // Escape
}

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
