// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/ffmpeg/ffmpeg_screen_recorder.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTest>
#include <csignal>
#include <optional>

#include "support/colour_window.h"
#include "support/test_support.h"
#include "support/video_probe.h"

namespace {

constexpr int kFinishWaitMs = 60000;

int threadsOfThisProcess() {
    return static_cast<int>(QDir(QStringLiteral("/proc/self/task"))
                                .entryList(QDir::Dirs | QDir::NoDotAndDotDot)
                                .size());
}

class FfmpegScreenRecorderTest : public testing::Test {
protected:
    void SetUp() override { parkPointer(); }

    // Records `area` for about `seconds`; the result once the file is done.
    // `wallSeconds` receives the time from start() to stop().
    std::optional<ScreenRecordingResult> record(const QRect& area, double seconds,
                                                double* wallSeconds = nullptr) {
        ScreenRecordingStartError error;
        QElapsedTimer wall;
        wall.start();
        std::unique_ptr<ScreenRecording> recording =
            recorder.start({area, path, qint64{2} * area.width() * area.height()}, &error);
        if (!recording) {
            ADD_FAILURE() << "cannot start: " << error.reason.toStdString();
            return std::nullopt;
        }
        QTest::qWait(static_cast<int>(seconds * 1000));
        return stop(*recording, wall, wallSeconds);
    }

    std::optional<ScreenRecordingResult> stop(ScreenRecording& recording, const QElapsedTimer& wall,
                                              double* wallSeconds) {
        std::optional<ScreenRecordingResult> result;
        QObject context;
        recording.stop(&context, [&](const ScreenRecordingResult& done) { result = done; });
        if (wallSeconds != nullptr) {
            *wallSeconds = static_cast<double>(wall.nsecsElapsed()) / 1e9;
        }
        EXPECT_TRUE(QTest::qWaitFor([&] { return result.has_value(); }, kFinishWaitMs));
        return result;
    }

    TestFolder folder;
    const QString path = folder.path(QStringLiteral("recording.mp4"));
    FfmpegScreenRecorder recorder{qgetenv("DISPLAY")};
    ColourWindow window;
};

TEST_F(FfmpegScreenRecorderTest, RecordsTheAreaAtAConstant30FramesPerSecondInAFinishedMp4) {
    const QRect area(120, 90, 400, 300);
    ASSERT_TRUE(window.showAt(area));
    const int threadsBefore = threadsOfThisProcess();

    double wallSeconds = 0;
    const std::optional<ScreenRecordingResult> result = record(area, 2.5, &wallSeconds);
    ASSERT_TRUE(result);
    ASSERT_EQ(result->outcome, ScreenRecordingResult::Outcome::saved);
    EXPECT_TRUE(result->finishProblem.isEmpty()) << result->finishProblem.toStdString();

    const VideoProbe probe = probeVideo(path);
    ASSERT_TRUE(probe.ok) << probe.errors.toStdString();
    EXPECT_EQ(probe.codec, "h264");
    EXPECT_EQ(probe.pixelFormat, "yuv420p");
    EXPECT_EQ(QSize(probe.width, probe.height), area.size());
    EXPECT_EQ(probe.averageFrameRate, "30/1");
    EXPECT_EQ(probe.frames, qRound64(probe.duration * 30)) << "a constant 30 frames per second";
    EXPECT_EQ(probe.frames, result->counts.written);
    // The time line starts at the first picture, a frame or two after start().
    EXPECT_NEAR(probe.duration, wallSeconds, 0.3);
    EXPECT_TRUE(probe.errors.isEmpty()) << probe.errors.toStdString();

    // The finished file is an ordinary MP4 with its index in front.
    const QByteArray bytes = readFileBytes(path);
    EXPECT_LT(bytes.indexOf("moov"), bytes.indexOf("mdat"));
    EXPECT_EQ(bytes.indexOf("moof"), -1);
    EXPECT_FALSE(QFile::exists(folder.path(QStringLiteral(".recording.mp4.faststart"))));

    const QImage frame = decodeVideoFrame(path, 30);
    ASSERT_EQ(frame.size(), area.size());
    for (const QPoint point :
         {QPoint(100, 75), QPoint(300, 75), QPoint(100, 225), QPoint(300, 225)}) {
        EXPECT_TRUE(coloursClose(frame.pixel(point), window.colourAt(point)))
            << point.x() << "," << point.y() << ": " << std::hex << frame.pixel(point);
    }

    // Grabbing, encoding and finishing threads have all ended.
    EXPECT_EQ(threadsOfThisProcess(), threadsBefore);
}

TEST_F(FfmpegScreenRecorderTest, OddSizesArePaddedWithTheEdgePixels) {
    ASSERT_TRUE(window.showAt({40, 60, 1400, 400}));
    // Ends inside the window's right (green, yellow) quadrants.
    const QRect area(40, 60, 1277, 301);
    const std::optional<ScreenRecordingResult> result = record(area, 1.0);
    ASSERT_TRUE(result);
    ASSERT_EQ(result->outcome, ScreenRecordingResult::Outcome::saved);

    const VideoProbe probe = probeVideo(path);
    ASSERT_TRUE(probe.ok) << probe.errors.toStdString();
    EXPECT_EQ(QSize(probe.width, probe.height), QSize(1278, 302));
    const QImage frame = decodeVideoFrame(path, 10);
    ASSERT_EQ(frame.size(), QSize(1278, 302));
    for (const auto& [point, colour] : {std::pair{QPoint(1277, 20), ColourWindow::kQuadrants[1]},
                                        std::pair{QPoint(1277, 301), ColourWindow::kQuadrants[3]},
                                        std::pair{QPoint(10, 301), ColourWindow::kQuadrants[2]}}) {
        EXPECT_TRUE(coloursClose(frame.pixel(point), colour))
            << point.x() << "," << point.y() << ": " << std::hex << frame.pixel(point);
    }
}

TEST_F(FfmpegScreenRecorderTest, StoppingBeforeTheFirstPictureLeavesNoFile) {
    ScreenRecordingStartError error;
    std::unique_ptr<ScreenRecording> recording =
        recorder.start({QRect(0, 0, 320, 240), path, 153600}, &error);
    ASSERT_TRUE(recording);
    EXPECT_TRUE(QFile::exists(path));
    QElapsedTimer wall;
    wall.start();
    const std::optional<ScreenRecordingResult> result = stop(*recording, wall, nullptr);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->outcome, ScreenRecordingResult::Outcome::noFrames);
    EXPECT_EQ(result->counts.written, 0);
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(FfmpegScreenRecorderTest, StartFailuresSayWhichStepFailedAndLeaveNoFile) {
    ScreenRecordingStartError error;
    // x11grab refuses an area beyond the screen.
    EXPECT_FALSE(recorder.start({QRect(1800, 0, 400, 300), path, 240000}, &error));
    EXPECT_EQ(error.failure, ScreenRecordingFailure::screenInput);
    EXPECT_FALSE(error.reason.isEmpty());
    EXPECT_FALSE(QFile::exists(path));

    EXPECT_FALSE(recorder.start(
        {QRect(0, 0, 320, 240), folder.path(QStringLiteral("missing/folder.mp4")), 153600},
        &error));
    EXPECT_EQ(error.failure, ScreenRecordingFailure::outputFile);

    FfmpegScreenRecorder noDisplay(":987");
    EXPECT_FALSE(noDisplay.start({QRect(0, 0, 320, 240), path, 153600}, &error));
    EXPECT_EQ(error.failure, ScreenRecordingFailure::screenInput);
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(FfmpegScreenRecorderTest, AKilledRecordingLeavesAFilePlayableUpToItsLastKeyFrame) {
    const QRect area(200, 200, 320, 240);
    ASSERT_TRUE(window.showAt(area));
    QProcess helper;
    helper.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    helper.start(QStringLiteral(QUILLIX_KILL_HELPER),
                 {path, QString::number(area.x()), QString::number(area.y()),
                  QString::number(area.width()), QString::number(area.height())});
    ASSERT_TRUE(helper.waitForReadyRead(10000));
    ASSERT_EQ(helper.readLine().trimmed(), "recording");
    // Key frames every 2 s: after 3.5 s at least the first fragment is whole.
    QTest::qWait(3500);
    ::kill(static_cast<pid_t>(helper.processId()), SIGKILL);
    ASSERT_TRUE(helper.waitForFinished(10000));
    EXPECT_EQ(helper.exitStatus(), QProcess::CrashExit);

    const VideoProbe probe = probeVideo(path);
    ASSERT_TRUE(probe.ok) << probe.errors.toStdString();
    EXPECT_EQ(probe.codec, "h264");
    EXPECT_GE(probe.frames, 60);
    EXPECT_LE(probe.frames, 3.5 * 30);
    const QImage frame = decodeVideoFrame(path, static_cast<int>(probe.frames) - 1);
    ASSERT_EQ(frame.size(), area.size());
    EXPECT_TRUE(coloursClose(frame.pixel(60, 60), ColourWindow::kQuadrants[0]));
    EXPECT_TRUE(coloursClose(frame.pixel(260, 180), ColourWindow::kQuadrants[3]));
}

}  // namespace
