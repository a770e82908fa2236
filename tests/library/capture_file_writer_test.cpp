// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "library/capture_file_writer.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QObject>
#include <csignal>
#include <thread>
#include <vector>

#include "library/capture_registry.h"
#include "library/captures_in_flight.h"
#include "support/test_support.h"

namespace {

const QString kName = QStringLiteral("Screenshot_2026-11-16T09-45-11Z.png");

QStringList visibleEntries(const QString& folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name);
}

QStringList allEntries(const QString& folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                                  QDir::Name);
}

template <typename T>
T waitFor(QFuture<T> future) {
    while (!future.isFinished()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return future.result();
}

TEST(CaptureFileWriter, TakenNamesAreNumberedBeforeTheExtension) {
    EXPECT_EQ(numberedCaptureName(kName, 1), kName);
    EXPECT_EQ(numberedCaptureName(kName, 2),
              QStringLiteral("Screenshot_2026-11-16T09-45-11Z (2).png"));
    EXPECT_EQ(numberedCaptureName(QStringLiteral("a.b.png"), 3), QStringLiteral("a.b (3).png"));
    EXPECT_EQ(numberedCaptureName(QStringLiteral("plain"), 2), QStringLiteral("plain (2)"));
}

TEST(CaptureFileWriter, ANewCaptureNeverReplacesAFileAndRacingCapturesAllSurvive) {
    TestFolder folder;
    const QString desktop = folder.path("Desktop");
    writeFileBytes(desktop + "/" + kName, "someone else's");
    const CaptureDestination destination{kName, desktop, {}};

    // Several captures of the same second, written at the same moment.
    std::vector<NewCaptureFile> written(6);
    std::vector<std::thread> writers;
    for (size_t i = 0; i < written.size(); ++i) {
        writers.emplace_back([&written, &destination, i] {
            written[i] = writeNewCaptureFile(QByteArray::number(int(i)), destination);
        });
    }
    for (std::thread& writer : writers) {
        writer.join();
    }

    EXPECT_EQ(readFileBytes(desktop + "/" + kName), QByteArray("someone else's"));
    QStringList expected{kName};
    for (int number = 2; number <= 7; ++number) {
        expected.append(numberedCaptureName(kName, number));
    }
    expected.sort();
    EXPECT_EQ(allEntries(desktop), expected) << "nothing replaced, nothing left beside";
    for (size_t i = 0; i < written.size(); ++i) {
        ASSERT_TRUE(written[i].inSaveFolder()) << written[i].saveFolderProblem.toStdString();
        EXPECT_EQ(readFileBytes(written[i].path), QByteArray::number(int(i)));
    }
}

TEST(CaptureFileWriter, AnUnusableSaveFolderFallsBackInOrderAndSaysWhy) {
    TestFolder folder;
    // Files where folders should be: no folder can be made there, even by root.
    writeFileBytes(folder.path("Desktop"), "a file");
    writeFileBytes(folder.path("blocked"), "a file");
    const QString pictures = folder.path("Pictures");
    const QString data = folder.path("data/Quillix");

    const NewCaptureFile toPictures =
        writeNewCaptureFile("one", {kName, folder.path("Desktop"), {pictures, data}});
    EXPECT_EQ(toPictures.path, pictures + "/" + kName);
    EXPECT_EQ(toPictures.saveFolder, folder.path("Desktop"));
    EXPECT_EQ(toPictures.saveFolderProblem, QStringLiteral("Not a directory"));
    EXPECT_FALSE(toPictures.inSaveFolder());

    const NewCaptureFile toData = writeNewCaptureFile(
        "two", {kName, folder.path("Desktop/sub"), {folder.path("blocked/Pictures"), data}});
    EXPECT_EQ(toData.path, data + "/" + kName);
    EXPECT_EQ(readFileBytes(toData.path), QByteArray("two"));

    const NewCaptureFile nowhere = writeNewCaptureFile(
        "three", {kName, folder.path("Desktop"), {folder.path("blocked/Pictures")}});
    EXPECT_FALSE(nowhere.written());
    EXPECT_EQ(nowhere.saveFolderProblem, QStringLiteral("Not a directory"));
    EXPECT_EQ(readFileBytes(folder.path("Desktop")), QByteArray("a file"));
}

TEST(CaptureFileWriter, ACrashDuringTheWriteLeavesNoPartialCapture) {
    TestFolder folder;
    const QString desktop = folder.path("Desktop");
    QDir().mkpath(desktop);
    const QByteArray bytes(4 << 20, 'p');
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        // Past 64 KiB the kernel ends the process in the middle of its write.
        const rlimit fileSize{64 << 10, 64 << 10};
        const rlimit noCore{0, 0};
        ::setrlimit(RLIMIT_CORE, &noCore);
        ::setrlimit(RLIMIT_FSIZE, &fileSize);
        std::signal(SIGXFSZ, SIG_DFL);
        writeNewCaptureFile(bytes, {kName, desktop, {}});
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGXFSZ) << status;
    EXPECT_EQ(visibleEntries(desktop), QStringList{}) << "no half-written capture";
}

TEST(CaptureFileWriter, ARewriteKeepsAnOwnCaptureOwnAndOnlyThat) {
    TestFolder folder;
    const QString own = folder.path("Desktop/own.png");
    const QString other = folder.path("Desktop/other.png");
    writeFileBytes(own, "old own");
    writeFileBytes(other, "old other");
    ::chmod(QFile::encodeName(own).constData(), 0640);
    CaptureRegistry registry(folder.dataDir(), folder.legacyDir());
    registry.record(own);
    const quint64 otherInode = inodeOf(other);
    const quint64 ownInodeBefore = inodeOf(own);
    QObject context;

    EXPECT_TRUE(waitFor(rewriteCapture(
        own, [] { return QByteArray("new own"); }, &context, registry)));
    EXPECT_EQ(readFileBytes(own), QByteArray("new own"));
    EXPECT_EQ(permissionBits(own), 0640u);
    EXPECT_TRUE(registry.contains(inodeOf(own)));
    // The freed number goes with the old file: the file system hands it out
    // again, and a stranger's file must not become ours by it.
    EXPECT_FALSE(registry.contains(ownInodeBefore));
    EXPECT_TRUE(CaptureRegistry(folder.dataDir(), folder.legacyDir()).contains(inodeOf(own)))
        << "saved, not only remembered";

    EXPECT_TRUE(waitFor(rewriteCapture(
        other, [] { return QByteArray("new other"); }, &context, registry)));
    EXPECT_FALSE(registry.contains(inodeOf(other)));
    EXPECT_FALSE(registry.contains(otherInode));

    const quint64 ownInode = inodeOf(own);
    EXPECT_FALSE(waitFor(rewriteCapture(
        own, [] { return QByteArray(); }, &context, registry)));
    EXPECT_EQ(readFileBytes(own), QByteArray("new own"));
    EXPECT_EQ(inodeOf(own), ownInode);
    EXPECT_EQ(CaptureInFlight::count(), 0);
    EXPECT_EQ(allEntries(folder.path("Desktop")), (QStringList{"other.png", "own.png"}));
}

}  // namespace
