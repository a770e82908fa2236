// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "updates/version_compare.h"

#include <gtest/gtest.h>

#include "support/test_support.h"

namespace {

bool newer(const char* candidate, const char* running) {
    return isNewerVersion(QString::fromUtf8(candidate), QString::fromUtf8(running));
}

TEST(VersionCompare, DigitRunsCompareAsNumbers) {
    EXPECT_TRUE(newer("1.10", "1.9"));
    EXPECT_FALSE(newer("1.9", "1.10"));
    EXPECT_TRUE(newer("2.0", "1.99"));
    EXPECT_TRUE(newer("1.2.10", "1.2.9"));
    EXPECT_FALSE(newer("1.007", "1.7"));
    EXPECT_FALSE(newer("1.7", "1.007"));
}

TEST(VersionCompare, LongerTextWithTheSamePrefixIsNewer) {
    EXPECT_TRUE(newer("1.2.0", "1.2"));
    EXPECT_FALSE(newer("1.2", "1.2.0"));
    EXPECT_TRUE(newer("1.0b", "1.0"));
}

TEST(VersionCompare, EqualTextsAreNotNewer) {
    EXPECT_FALSE(newer("1.4", "1.4"));
    EXPECT_FALSE(newer("", ""));
    EXPECT_EQ(compareVersions(QStringLiteral("1.4"), QStringLiteral("1.4")), 0);
}

TEST(VersionCompare, OtherCharactersCompareByCode) {
    EXPECT_TRUE(newer("1.0b", "1.0a"));
    EXPECT_TRUE(newer("a", "1"));             // 'a' has a higher code than '1'
    EXPECT_FALSE(newer("1-beta", "1.beta"));  // '-' sorts before '.'
}

TEST(VersionCompare, AnyVersionAboveZeroIsNewerThanAMissingOne) {
    EXPECT_TRUE(newer("1.0", "0"));
    EXPECT_FALSE(newer("0.0", "0.1"));
}

TEST(VersionCompare, HugeNumbersDoNotOverflow) {
    const char* huge = "1.123456789012345678901234567890";
    EXPECT_TRUE(newer(huge, "1.99999999999999999999"));
    EXPECT_FALSE(newer("1.99999999999999999999", huge));
    EXPECT_TRUE(newer("1.123456789012345678901234567891", huge));
    EXPECT_FALSE(newer("1.000000000000000000000000000000000000005", "1.5"));
}

}  // namespace
