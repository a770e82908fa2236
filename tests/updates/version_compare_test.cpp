// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "updates/version_compare.h"

#include <gtest/gtest.h>

#include "support/test_support.h"

namespace {

struct Case {
    const char* candidate;
    const char* running;
    bool newer;
};

TEST(VersionCompare, NumbersByValueOtherCharactersByCodeShorterPrefixSmaller) {
    const char* huge = "1.123456789012345678901234567890";
    const Case cases[] = {
        {"1.10", "1.9", true},
        {"1.9", "1.10", false},
        {"2.0", "1.99", true},
        {"1.2.0", "1.2", true},
        {"1.2", "1.2.0", false},
        {"1.4", "1.4", false},
        {"", "", false},
        {"1.007", "1.7", false},
        {"1.7", "1.007", false},
        {"1.0b", "1.0a", true},
        {"1.0b", "1.0", true},
        {"a", "1", true},
        {"1-beta", "1.beta", false},  // '-' has a lower code than '.'
        {"1.0", "0", true},
        {"0.0", "0.1", false},
        // Digit runs longer than any integer type.
        {huge, "1.99999999999999999999", true},
        {"1.99999999999999999999", huge, false},
        {"1.123456789012345678901234567891", huge, true},
        {"1.000000000000000000000000000000000000005", "1.5", false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(isNewerVersion(QString::fromUtf8(c.candidate), QString::fromUtf8(c.running)),
                  c.newer)
            << c.candidate << " against " << c.running;
    }
}

}  // namespace
