// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "recording/video_recorder.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

#include "platform/canberra/canberra_sound_player.h"
#include "platform/ffmpeg/ffmpeg_screen_recorder.h"
#include "support/colour_window.h"
#include "support/test_support.h"
#include "support/video_probe.h"

namespace {

constexpr int kFinishWaitMs = 60000;

// The recorder's log lines, as the program prints them.
QStringList recorderLines;
QtMessageHandler previousHandler = nullptr;

void collectRecorderLines(QtMsgType type, const QMessageLogContext& context,
                          const QString& message) {
    if (context.category != nullptr && QByteArray(context.category) == "quillix.recording") {
        recorderLines.append(message);
        return;
    }
    previousHandler(type, context, message);
}

class VideoRecorderTest : public testing::Test {
protected:
    void SetUp() override {
        parkPointer();
        recorderLines.clear();
        previousHandler = qInstallMessageHandler(collectRecorderLines);
        recorder.setOnFinished([this](const QString& path) { finishedPaths.append(path); });
    }
    void TearDown() override { qInstallMessageHandler(previousHandler); }

    QScreen& screen() const { return *QGuiApplication::primaryScreen(); }
    QStringList desktopFiles() const {
        return QDir(desktop).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }
    bool waitUntilFinished() {
        return QTest::qWaitFor([&] { return !recorder.isFinishing(); }, kFinishWaitMs);
    }

    TestFolder folder;
    const QString desktop = folder.path(QStringLiteral("Desktop"));
    FfmpegScreenRecorder backend{qgetenv("DISPLAY")};
    CanberraSoundPlayer sounds;
    QSignalSpy played{&sounds, &CanberraSoundPlayer::played};
    VideoRecorder recorder{{&backend, sounds, desktop}};
    QStringList finishedPaths;
    ColourWindow window;
};

TEST_F(VideoRecorderTest, RecordsARectangleToTheDesktopAndPlaysTheShutterWhenDone) {
    ASSERT_TRUE(window.showAt({60, 80, 1400, 500}));
    const QRect area(60, 80, 1277, 500);  // odd: padded to 1278
    QElapsedTimer wall;
    wall.start();
    recorder.start(screen(), area);
    ASSERT_TRUE(recorder.isRecording());
    ASSERT_EQ(desktopFiles().size(), 1);
    const QString name = desktopFiles().constFirst();
    EXPECT_TRUE(
        QRegularExpression(QStringLiteral("^Recording_\\d{10}\\.mp4$")).match(name).hasMatch())
        << name.toStdString();
    EXPECT_NEAR(name.mid(10, 10).toLongLong(), QDateTime::currentSecsSinceEpoch(), 2);
    EXPECT_EQ(recorderLines,
              QStringList({"[VideoRecorder] Recording started → " + name + " (1277×500)",
                           "[VideoRecorder] Padding 1277×500 to 1278×500: H.264 needs even "
                           "sizes, so the edge pixels are repeated"}));

    QTest::qWait(2500);
    recorder.stop();
    const double wallSeconds = static_cast<double>(wall.nsecsElapsed()) / 1e9;
    EXPECT_FALSE(recorder.isRecording());
    ASSERT_TRUE(waitUntilFinished());
    const QString path = QDir(desktop).filePath(name);
    EXPECT_EQ(finishedPaths, QStringList{path});
    EXPECT_EQ(recorderLines.constLast(), "[VideoRecorder] Saved → " + name);
    ASSERT_TRUE(QTest::qWaitFor([&] { return played.count() == 1; }, 10000));
    EXPECT_EQ(played.at(0).at(0).toString(), "camera-shutter");
    EXPECT_EQ(desktopFiles(), QStringList{name}) << "nothing else is left in the Desktop";

    const VideoProbe probe = probeVideo(path);
    ASSERT_TRUE(probe.ok) << probe.errors.toStdString();
    EXPECT_EQ(probe.codec, "h264");
    EXPECT_EQ(QSize(probe.width, probe.height), QSize(1278, 500));
    EXPECT_EQ(probe.averageFrameRate, "30/1");
    EXPECT_EQ(probe.frames, qRound64(probe.duration * 30));
    EXPECT_NEAR(probe.duration, wallSeconds, 0.5);
    const QImage frame = decodeVideoFrame(path, static_cast<int>(probe.frames) / 2);
    ASSERT_FALSE(frame.isNull());
    for (const QPoint point : {QPoint(300, 100), QPoint(1000, 100), QPoint(300, 400),
                               QPoint(1000, 400), QPoint(1277, 400)}) {
        EXPECT_TRUE(coloursClose(frame.pixel(point), window.colourAt(point)))
            << point.x() << "," << point.y();
    }
}

TEST_F(VideoRecorderTest, WithoutARectangleTheWholeScreenIsRecorded) {
    recorder.start(screen());
    ASSERT_TRUE(recorder.isRecording());
    QTest::qWait(1000);
    recorder.stop();
    ASSERT_TRUE(waitUntilFinished());
    ASSERT_EQ(finishedPaths.size(), 1);
    const VideoProbe probe = probeVideo(finishedPaths.constFirst());
    ASSERT_TRUE(probe.ok) << probe.errors.toStdString();
    EXPECT_EQ(QSize(probe.width, probe.height),
              screen().geometry().size() * screen().devicePixelRatio());
    EXPECT_TRUE(recorderLines.constFirst().endsWith(QStringLiteral(" (%1×%2)")
                                                        .arg(screen().geometry().width())
                                                        .arg(screen().geometry().height())));
}

TEST_F(VideoRecorderTest, StoppingBeforeTheFirstFrameLeavesNoFileAndCallsNothing) {
    recorder.start(screen(), QRect(0, 0, 320, 240));
    ASSERT_TRUE(recorder.isRecording());
    recorder.stop();
    EXPECT_FALSE(recorder.isRecording());
    ASSERT_TRUE(waitUntilFinished());
    EXPECT_TRUE(desktopFiles().isEmpty()) << desktopFiles().join(", ").toStdString();
    EXPECT_TRUE(finishedPaths.isEmpty());
    EXPECT_TRUE(recorderLines.constLast().startsWith("[VideoRecorder] No frames captured — "));
    QTest::qWait(300);
    EXPECT_EQ(played.count(), 0) << "no shutter for a recording that left nothing";
}

TEST_F(VideoRecorderTest, ANewRecordingStartsWhileThePreviousFileIsFinished) {
    const QRect area(0, 0, 640, 360);
    recorder.start(screen(), area);
    QTest::qWait(1200);
    recorder.stop();
    ASSERT_TRUE(recorder.isFinishing());
    recorder.start(screen(), area);
    ASSERT_TRUE(recorder.isRecording());
    QTest::qWait(1200);
    recorder.stop();
    ASSERT_TRUE(waitUntilFinished());

    // Both files complete; one started in the same second as the other
    // takes a numbered name rather than the file still being finished.
    ASSERT_EQ(finishedPaths.size(), 2);
    EXPECT_NE(finishedPaths.at(0), finishedPaths.at(1));
    EXPECT_EQ(desktopFiles().size(), 2) << desktopFiles().join(", ").toStdString();
    for (const QString& path : finishedPaths) {
        const VideoProbe probe = probeVideo(path);
        EXPECT_TRUE(probe.ok) << path.toStdString() << probe.errors.toStdString();
        EXPECT_NEAR(probe.duration, 1.2, 0.3) << path.toStdString();
    }
}

TEST_F(VideoRecorderTest, RefusedStartsAreLoggedAndLeaveTheRecorderIdle) {
    // A rectangle beside the screen has nothing of it to record.
    const QRect bounds = screen().geometry();
    recorder.start(screen(), QRect(bounds.right() + 10, 0, 300, 200));
    EXPECT_FALSE(recorder.isRecording());
    EXPECT_EQ(recorderLines, QStringList{"[VideoRecorder] Invalid dimensions 0×0"});

    VideoRecorder withoutBackend({nullptr, sounds, desktop});
    withoutBackend.start(screen());
    EXPECT_FALSE(withoutBackend.isRecording());
    EXPECT_TRUE(recorderLines.constLast().startsWith(
        "[VideoRecorder] Screen Recording permission not yet granted — "));

    // A second start while recording keeps the first recording.
    recorder.start(screen(), QRect(0, 0, 320, 240));
    recorder.start(screen(), QRect(0, 0, 640, 480));
    EXPECT_EQ(desktopFiles().size(), 1);
    QTest::qWait(500);
    recorder.stop();
    ASSERT_TRUE(waitUntilFinished());
    ASSERT_EQ(finishedPaths.size(), 1);
    EXPECT_EQ(probeVideo(finishedPaths.constFirst()).width, 320);
}

}  // namespace
