// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/atomic_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <cerrno>

#include "support/test_support.h"

namespace {

QStringList entriesOf(const QString& folder) {
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System);
}

TEST(AtomicFile, CreatesAndReplacesWithNothingLeftBeside) {
    TestFolder folder;
    const QString path = folder.path(QStringLiteral("capture.png"));
    ASSERT_TRUE(writeFileAtomically(path, "first"));
    EXPECT_EQ(readFileBytes(path), QByteArray("first"));
    EXPECT_EQ(permissionBits(path), 0644u);

    ::chmod(QFile::encodeName(path).constData(), 0640);
    ASSERT_TRUE(writeFileAtomically(path, "second, longer"));
    EXPECT_EQ(readFileBytes(path), QByteArray("second, longer"));
    EXPECT_EQ(permissionBits(path), 0640u) << "a replaced file keeps its permissions";
    EXPECT_EQ(entriesOf(folder.path()), QStringList{QStringLiteral("capture.png")});
}

TEST(AtomicFile, AskedPermissionsWinOverTheReplacedFiles) {
    TestFolder folder;
    const QString path = folder.path(QStringLiteral("settings.bin"));
    writeFileBytes(path, "old");
    ::chmod(QFile::encodeName(path).constData(), 0644);
    ASSERT_TRUE(writeFileAtomically(path, "new", AtomicWriteMode::replace, 0600));
    EXPECT_EQ(permissionBits(path), 0600u);
}

TEST(AtomicFile, NeverReplaceKeepsAnExistingFile) {
    TestFolder folder;
    const QString path = folder.path(QStringLiteral("Screenshot.png"));
    writeFileBytes(path, "someone else's");
    EXPECT_FALSE(writeFileAtomically(path, "ours", AtomicWriteMode::neverReplace));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(readFileBytes(path), QByteArray("someone else's"));
    EXPECT_EQ(entriesOf(folder.path()), QStringList{QStringLiteral("Screenshot.png")});
}

TEST(AtomicFile, FailsCleanlyWhereNothingCanBeWritten) {
    TestFolder folder;
    EXPECT_FALSE(writeFileAtomically(folder.path(QStringLiteral("missing/capture.png")), "x"));
    EXPECT_EQ(errno, ENOENT);

    const QString readOnly = folder.path(QStringLiteral("read-only"));
    QDir().mkpath(readOnly);
    ::chmod(QFile::encodeName(readOnly).constData(), 0555);
    if (::geteuid() != 0) {  // root writes anywhere
        EXPECT_FALSE(writeFileAtomically(readOnly + QStringLiteral("/capture.png"), "x"));
        EXPECT_TRUE(entriesOf(readOnly).isEmpty());
    }
    ::chmod(QFile::encodeName(readOnly).constData(), 0755);
}

}  // namespace
