// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/canberra/canberra_sound_player.h"

#include <canberra.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <memory>

#include "support/test_support.h"

namespace {

constexpr int kWaitMs = 15000;
// Set in the child process of the no-sound-device check.
const char* const kChildVariable = "QUILLIX_SOUND_TEST_CHILD";

// The test desktop's HOME lets ALSA play into a null device, so that the
// sound theme's files are really found, decoded and played.
bool alsaPlaysIntoNullDevice() {
    return readFileBytes(QDir::home().filePath(QStringLiteral(".asoundrc"))).contains("type null");
}

struct Attempt {
    QString eventId;
    int result = 1;
};

QList<Attempt> attempts(const QSignalSpy& spy) {
    QList<Attempt> list;
    for (const QList<QVariant>& arguments : spy) {
        list.append({arguments.at(0).toString(), arguments.at(1).toInt()});
    }
    return list;
}

TEST(CanberraSoundPlayer, ShutterPlaysAfterPlayHasReturned) {
    if (!alsaPlaysIntoNullDevice()) {
        GTEST_SKIP() << "needs ~/.asoundrc with a null default device (scripts/with-desktop)";
    }
    CanberraSoundPlayer player;
    QSignalSpy played(&player, &CanberraSoundPlayer::played);
    player.play(QStringLiteral("camera-shutter"));
    // The sound is played on the worker thread and reported through the
    // event loop, never from within play().
    EXPECT_EQ(played.count(), 0);

    ASSERT_TRUE(QTest::qWaitFor([&] { return played.count() == 1; }, kWaitMs));
    EXPECT_EQ(attempts(played).at(0).eventId, "camera-shutter");
    EXPECT_EQ(attempts(played).at(0).result, CA_SUCCESS);
}

TEST(CanberraSoundPlayer, SoundsPlayInOrderAndAnUnknownIdFails) {
    if (!alsaPlaysIntoNullDevice()) {
        GTEST_SKIP() << "needs ~/.asoundrc with a null default device (scripts/with-desktop)";
    }
    CanberraSoundPlayer player;
    QSignalSpy played(&player, &CanberraSoundPlayer::played);
    player.play(QStringLiteral("trash-empty"));
    player.play(QStringLiteral("no-such-quillix-sound"));
    player.play(QStringLiteral("camera-shutter"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return played.count() == 3; }, kWaitMs));

    const QList<Attempt> results = attempts(played);
    EXPECT_EQ(results.at(0).eventId, "trash-empty");
    EXPECT_EQ(results.at(0).result, CA_SUCCESS);
    EXPECT_EQ(results.at(1).eventId, "no-such-quillix-sound");
    EXPECT_EQ(results.at(1).result, CA_ERROR_NOTFOUND);
    EXPECT_EQ(results.at(2).eventId, "camera-shutter");
    EXPECT_EQ(results.at(2).result, CA_SUCCESS);
}

// Without ALSA configuration the container's default device does not exist.
// The check runs in a child process with an empty HOME, because ALSA reads
// its configuration once per process.
TEST(CanberraSoundPlayer, WithoutASoundDeviceItFailsQuietly) {
    if (qEnvironmentVariableIsSet(kChildVariable)) {
        CanberraSoundPlayer player;
        QSignalSpy played(&player, &CanberraSoundPlayer::played);
        player.play(QStringLiteral("camera-shutter"));
        ASSERT_TRUE(QTest::qWaitFor([&] { return played.count() == 1; }, kWaitMs));
        EXPECT_LT(attempts(played).at(0).result, 0);
        return;
    }
    TestFolder emptyHome;
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), emptyHome.path());
    environment.insert(QString::fromLatin1(kChildVariable), QStringLiteral("1"));
    environment.remove(QStringLiteral("PULSE_SERVER"));
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::ForwardedChannels);
    child.start(
        QCoreApplication::applicationFilePath(),
        {QStringLiteral("--gtest_filter=CanberraSoundPlayer.WithoutASoundDeviceItFailsQuietly")});
    ASSERT_TRUE(child.waitForFinished(2 * kWaitMs)) << "the child hung";
    EXPECT_EQ(child.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(child.exitCode(), 0);
}

TEST(CanberraSoundPlayer, DestroyedWhileSoundsAreQueued) {
    auto player = std::make_unique<CanberraSoundPlayer>();
    for (int i = 0; i < 5; ++i) {
        player->play(QStringLiteral("camera-shutter"));
    }
    player.reset();  // must neither hang nor touch the destroyed player
    QTest::qWait(100);
    SUCCEED();
}

}  // namespace
