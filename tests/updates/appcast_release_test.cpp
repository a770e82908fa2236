// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "updates/appcast_release.h"

#include <gtest/gtest.h>

#include "support/test_support.h"

namespace {

TEST(AppcastRelease, ReadsTheReleaseAndIgnoresUnknownKeys) {
    const auto release = AppcastRelease::fromJson(R"({"version": "1.1.0",
        "downloadURL": "https://example.org/Quillix-1.1.0.zip",
        "releaseNotes": "Faster.", "channel": "stable", "size": 12})");
    ASSERT_TRUE(release.has_value());
    EXPECT_EQ(release->version, QStringLiteral("1.1.0"));
    EXPECT_EQ(release->downloadURL, QStringLiteral("https://example.org/Quillix-1.1.0.zip"));
    EXPECT_EQ(release->releaseNotes, QStringLiteral("Faster."));
}

TEST(AppcastRelease, ReleaseNotesAreOptional) {
    const auto release = AppcastRelease::fromJson(
        R"({"version": "2.0", "downloadURL": "https://example.org/q.zip"})");
    ASSERT_TRUE(release.has_value());
    EXPECT_FALSE(release->releaseNotes.has_value());
}

TEST(AppcastRelease, IncompleteOrMalformedDocumentsAreRejected) {
    EXPECT_FALSE(AppcastRelease::fromJson(R"({"version": "2.0"})"));
    EXPECT_FALSE(AppcastRelease::fromJson(R"({"downloadURL": "https://example.org/q.zip"})"));
    EXPECT_FALSE(AppcastRelease::fromJson(R"({"version": 2, "downloadURL": "x"})"));
    EXPECT_FALSE(AppcastRelease::fromJson(R"(["2.0", "https://example.org/q.zip"])"));
    EXPECT_FALSE(AppcastRelease::fromJson("<html>Not Found</html>"));
    EXPECT_FALSE(AppcastRelease::fromJson(QByteArray()));
}

}  // namespace
