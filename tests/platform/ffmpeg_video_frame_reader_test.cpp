// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/ffmpeg/ffmpeg_video_frame_reader.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QRandomGenerator>
#include <QtConcurrent/QtConcurrentMap>
#include <QtEndian>

#include "support/test_support.h"

namespace {

// Runs the ffmpeg command-line tool, quietly, overwriting its output.
bool runFfmpeg(const QStringList& arguments) {
    QProcess ffmpeg;
    ffmpeg.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    ffmpeg.start(QStringLiteral("ffmpeg"),
                 QStringList{QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y")} +
                     arguments);
    return ffmpeg.waitForFinished(60000) && ffmpeg.exitStatus() == QProcess::NormalExit &&
           ffmpeg.exitCode() == 0;
}

// One second of H.264 whose left half is red and right half blue, so that
// orientation and colours can be read back from the pixels.
bool makeRedBlueVideo(const QString& path, int width, int height, const QString& extraFilter = {},
                      const QStringList& extraOutputOptions = {}) {
    const QString half = QStringLiteral("s=%1x%2:d=1").arg(width / 2).arg(height);
    return runFfmpeg(QStringList{"-f", "lavfi", "-i", "color=c=red:" + half, "-f", "lavfi", "-i",
                                 "color=c=blue:" + half, "-filter_complex",
                                 "hstack,format=yuv420p" + extraFilter, "-c:v", "libx264"} +
                     extraOutputOptions + QStringList{path});
}

// Writes a display matrix into the video track's header ("tkhd"), the way
// phones mark portrait recordings. Entries are 16.16 fixed point except the
// last column (2.30).
void setTrackMatrix(const QString& path, const std::array<qint32, 9>& matrix) {
    QByteArray bytes = readFileBytes(path);
    const qsizetype type = bytes.indexOf("tkhd");
    ASSERT_GT(type, 0);
    const bool version1 = bytes.at(type + 4) == 1;
    qsizetype offset = type + (version1 ? 56 : 44);
    for (qint32 value : matrix) {
        qToBigEndian(value, bytes.data() + offset);
        offset += 4;
    }
    writeFileBytes(path, bytes);
}

constexpr qint32 kOne = 0x10000;
constexpr qint32 kW = 0x40000000;

bool isRed(QRgb pixel) {
    return qRed(pixel) > 200 && qGreen(pixel) < 60 && qBlue(pixel) < 60;
}
bool isBlue(QRgb pixel) {
    return qBlue(pixel) > 200 && qRed(pixel) < 60 && qGreen(pixel) < 60;
}

class FfmpegVideoFrameReaderTest : public testing::Test {
protected:
    QImage frame(const QString& path, int maxSide = 200) const {
        return reader.firstFrame(path, maxSide);
    }

    TestFolder folder;
    FfmpegVideoFrameReader reader;
};

TEST_F(FfmpegVideoFrameReaderTest, FirstFrameIsScaledToFitAndKeepsItsPicture) {
    const QString path = folder.path("wide.mp4");
    ASSERT_TRUE(makeRedBlueVideo(path, 320, 240));

    const QImage image = frame(path);
    EXPECT_EQ(image.size(), QSize(200, 150));
    EXPECT_TRUE(isRed(image.pixel(20, 75)));
    EXPECT_TRUE(isBlue(image.pixel(180, 75)));

    const QImage larger = frame(path, 1000);
    EXPECT_EQ(larger.size(), QSize(320, 240)) << "small videos are not enlarged";
}

TEST_F(FfmpegVideoFrameReaderTest, DisplayMatrixTurnsThePictureUpright) {
    const QString quarter = folder.path("quarter.mp4");
    ASSERT_TRUE(makeRedBlueVideo(quarter, 320, 240));
    setTrackMatrix(quarter, {0, kOne, 0, -kOne, 0, 0, 0, 0, kW});  // shown turned clockwise
    const QImage upright = frame(quarter);
    ASSERT_EQ(upright.size(), QSize(150, 200));
    EXPECT_TRUE(isRed(upright.pixel(75, 20)));  // the left edge is now at the top
    EXPECT_TRUE(isBlue(upright.pixel(75, 180)));

    const QString half = folder.path("half.mov");
    ASSERT_TRUE(makeRedBlueVideo(half, 320, 240));
    setTrackMatrix(half, {-kOne, 0, 0, 0, -kOne, 0, 0, 0, kW});
    const QImage turned = frame(half);
    ASSERT_EQ(turned.size(), QSize(200, 150));
    EXPECT_TRUE(isBlue(turned.pixel(20, 75)));
    EXPECT_TRUE(isRed(turned.pixel(180, 75)));
}

TEST_F(FfmpegVideoFrameReaderTest, NonSquarePixelsGiveTheShownShape) {
    const QString path = folder.path("anamorphic.mp4");
    // 160 × 240 stored pixels, each twice as wide as tall: shown as 320 × 240.
    ASSERT_TRUE(makeRedBlueVideo(path, 160, 240, ",setsar=2"));
    EXPECT_EQ(frame(path).size(), QSize(200, 150));
}

TEST_F(FfmpegVideoFrameReaderTest, UnreadableFilesGiveANullImage) {
    const QString complete = folder.path("complete.mp4");
    ASSERT_TRUE(makeRedBlueVideo(complete, 320, 240));
    const QByteArray bytes = readFileBytes(complete);

    // Without "faststart" the index sits at the end: half a file has none.
    writeFileBytes(folder.path("truncated.mp4"), bytes.left(bytes.size() / 2));
    writeFileBytes(folder.path("empty.mp4"), {});
    QByteArray noise(64 * 1024, '\0');
    QRandomGenerator(7).fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
    writeFileBytes(folder.path("noise.mov"), noise);
    ASSERT_TRUE(
        runFfmpeg({"-f", "lavfi", "-i", "sine=d=1", "-c:a", "aac", folder.path("sound-only.mp4")}));

    for (const char* name :
         {"truncated.mp4", "empty.mp4", "noise.mov", "sound-only.mp4", "missing.mp4"}) {
        EXPECT_TRUE(frame(folder.path(name)).isNull()) << name;
    }
    EXPECT_TRUE(frame(complete, 0).isNull());
}

TEST_F(FfmpegVideoFrameReaderTest, DamagedMediaDataNeverCrashes) {
    const QString path = folder.path("streamable.mp4");
    ASSERT_TRUE(makeRedBlueVideo(path, 320, 240, {}, {"-movflags", "+faststart"}));
    const QByteArray bytes = readFileBytes(path);

    QByteArray scrambled = bytes;
    for (qsizetype i = scrambled.size() / 3; i < scrambled.size(); i += 7) {
        scrambled[i] = char(scrambled[i] ^ 0x5a);
    }
    writeFileBytes(folder.path("scrambled.mp4"), scrambled);
    writeFileBytes(folder.path("cut.mp4"), bytes.left(bytes.size() * 2 / 3));

    // The index is intact, so either a picture or nothing is fine; a crash
    // or an oversized picture is not.
    for (const char* name : {"scrambled.mp4", "cut.mp4"}) {
        const QImage image = frame(folder.path(name));
        EXPECT_LE(std::max(image.width(), image.height()), 200) << name;
    }
}

TEST_F(FfmpegVideoFrameReaderTest, ParallelCallsEachGetTheirFrame) {
    const QString path = folder.path("shared.mp4");
    ASSERT_TRUE(makeRedBlueVideo(path, 320, 240));
    const QList<QString> paths(8, path);
    const QList<QImage> frames = QtConcurrent::blockingMapped(
        paths, [this](const QString& file) { return reader.firstFrame(file, 200); });
    for (const QImage& image : frames) {
        EXPECT_EQ(image.size(), QSize(200, 150));
    }
}

}  // namespace
