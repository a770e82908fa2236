// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "library/capture_file_rename.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "support/test_support.h"

namespace {

TEST(CaptureFileRenameTest, TypedNameKeepsFolderAndExtension) {
    const QString shot = QStringLiteral("/home/u/Desktop/Screenshot 1.png");
    EXPECT_EQ(renamedCapturePath(shot, QStringLiteral("  Bug 12\n")),
              QStringLiteral("/home/u/Desktop/Bug 12.png"));
    EXPECT_EQ(renamedCapturePath(shot, QStringLiteral("Bug.png")),
              QStringLiteral("/home/u/Desktop/Bug.png.png"));
    EXPECT_EQ(renamedCapturePath(QStringLiteral("/v/clip.tar.MOV"), QStringLiteral("x")),
              QStringLiteral("/v/x.MOV"));
    EXPECT_EQ(renamedCapturePath(QStringLiteral("/v/noext"), QStringLiteral("y")),
              QStringLiteral("/v/y"));
    EXPECT_FALSE(renamedCapturePath(shot, QStringLiteral(" \t\n ")));
}

TEST(CaptureFileRenameTest, MoveRefusesToReplaceAnExistingFile) {
    TestFolder folder;
    const QString from = folder.path("a.png");
    const QString taken = folder.path("b.png");
    writeFileBytes(from, "a");
    writeFileBytes(taken, "b");

    const CaptureRenameResult refused = moveCaptureFile(from, taken);
    EXPECT_FALSE(refused.succeeded());
    EXPECT_FALSE(refused.errorMessage.isEmpty());
    EXPECT_EQ(readFileBytes(from), QByteArray("a"));
    EXPECT_EQ(readFileBytes(taken), QByteArray("b"));

    const CaptureRenameResult moved = moveCaptureFile(from, folder.path("c.png"));
    EXPECT_TRUE(moved.succeeded());
    EXPECT_EQ(moved.newPath, folder.path("c.png"));
    EXPECT_FALSE(QFileInfo::exists(from));
    EXPECT_EQ(readFileBytes(folder.path("c.png")), QByteArray("a"));

    EXPECT_FALSE(moveCaptureFile(folder.path("gone.png"), folder.path("d.png")).succeeded());
}

TEST(CaptureFileRenameTest, NamesWithSeparatorsOrALeadingDotAreRefusedWithAClearMessage) {
    TestFolder folder;
    const QString from = folder.path("Desktop/shot.png");
    writeFileBytes(from, "a");
    const std::pair<QString, QString> cases[] = {
        {QStringLiteral("../x"), QStringLiteral("A name can't contain “/”.")},
        {QStringLiteral("a/b"), QStringLiteral("A name can't contain “/”.")},
        {QStringLiteral("/etc/x"), QStringLiteral("A name can't contain “/”.")},
        {QStringLiteral(" .x"), QStringLiteral("A name can't start with “.”.")},
        {QStringLiteral(".."), QStringLiteral("A name can't start with “.”.")},
    };
    for (const auto& [typed, message] : cases) {
        const std::optional<QString> to = renamedCapturePath(from, typed);
        ASSERT_TRUE(to) << typed.toStdString();
        const CaptureRenameResult refused = moveCaptureFile(from, *to);
        EXPECT_EQ(refused.errorMessage, message) << typed.toStdString();
        EXPECT_EQ(readFileBytes(from), QByteArray("a"));
    }
    EXPECT_FALSE(QFileInfo::exists(folder.path("x.png")));
    EXPECT_EQ(QDir(folder.path("Desktop"))
                  .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{"shot.png"});

    // Dots inside a name are fine.
    EXPECT_TRUE(
        moveCaptureFile(from, *renamedCapturePath(from, QStringLiteral("v1.2 final"))).succeeded());
    EXPECT_EQ(readFileBytes(folder.path("Desktop/v1.2 final.png")), QByteArray("a"));
}

}  // namespace
