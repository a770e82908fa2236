// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "library/thumbnailer.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QImage>
#include <QTest>
#include <QThread>
#include <QTimeZone>
#include <atomic>
#include <memory>

#include "platform/ffmpeg/ffmpeg_video_frame_reader.h"
#include "sample_video.h"
#include "support/test_support.h"

namespace {

constexpr int kFillTimeoutMs = 30000;

void savePicture(const QString& path, QSize size, QColor color) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    ASSERT_TRUE(image.save(path, "PNG")) << path.toStdString();
}

// A listed file under a fixed id, as a scan would list it: the id stays the
// same when only the file's size changes.
struct ListedFile {
    ScreenshotItem item;
    Thumbnailer::Source source;
};

ListedFile listed(const QString& path) {
    const QDateTime listedAt = QDateTime::fromSecsSinceEpoch(1700000000, QTimeZone::utc());
    ScreenshotItem item(path, listedAt, listedAt);
    return {item, {item.id(), path, QFileInfo(path).size()}};
}

// The real FFmpeg reader behind a gate: every call waits until the gate is
// opened (or a safety timeout passes), so a test can hold workers mid-file.
class GatedVideoFrameReader : public VideoFrameReader {
public:
    QImage firstFrame(const QString& path, int maxSide) const override {
        ++entered;
        QElapsedTimer waited;
        waited.start();
        while (!open && waited.elapsed() < kFillTimeoutMs) {
            QThread::msleep(1);
        }
        return reader_.firstFrame(path, maxSide);
    }
    mutable std::atomic<int> entered = 0;
    std::atomic<bool> open = false;

private:
    FfmpegVideoFrameReader reader_;
};

// What a thumbnailer announced while the record lives: its connections go
// with it, so a later announcement never reaches a record already gone.
struct Announcements {
    explicit Announcements(Thumbnailer& thumbnailer) {
        QObject::connect(&thumbnailer, &Thumbnailer::thumbnailsDecoded, &receiver,
                         [this](const QHash<QString, QImage>& byId) { decoded.insert(byId); });
        QObject::connect(&thumbnailer, &Thumbnailer::fillingFinished, &receiver,
                         [this] { ++finishedFillings; });
    }
    QObject receiver;
    QHash<QString, QImage> decoded;
    int finishedFillings = 0;
};

class ThumbnailerTest : public testing::Test {
protected:
    QString file(const QString& name) const { return folder.path(name); }

    // Fills the list and waits until every filling has ended; the items get
    // the cached thumbnails, announced ones are applied as the store would.
    void fillAndWait(QList<ListedFile>& files) {
        QList<ScreenshotItem> items;
        std::vector<Thumbnailer::Source> sources;
        for (const ListedFile& listedFile : files) {
            items.append(listedFile.item);
            sources.push_back(listedFile.source);
        }
        Announcements announced(thumbnailer);
        thumbnailer.fill(items, sources);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !thumbnailer.isFilling(); }, kFillTimeoutMs));
        for (qsizetype i = 0; i < files.size(); ++i) {
            files[i].item.setThumbnail(
                announced.decoded.value(items[i].id(), items[i].thumbnail()));
        }
    }

    TestFolder folder;
    Thumbnailer thumbnailer;
};

TEST_F(ThumbnailerTest, DamagedOrMissingFilesGetNoThumbnailAndTheFillingStillFinishes) {
    savePicture(file("whole.png"), {800, 400}, Qt::red);
    const QByteArray picture = readFileBytes(file("whole.png"));
    writeFileBytes(file("truncated.png"), picture.left(picture.size() / 2));
    writeFileBytes(file("garbage.png"), QByteArray("\x89PNG\r\n\x1a\n", 8) + "garbage");
    writeFileBytes(file("empty.png"), {});
    ASSERT_TRUE(writeSampleVideo(file("whole.mp4")));
    const QByteArray video = readFileBytes(file("whole.mp4"));
    writeFileBytes(file("truncated.mp4"), video.left(video.size() / 3));
    writeFileBytes(file("deleted.png"), picture);

    QList<ListedFile> files;
    for (const char* name : {"whole.png", "truncated.png", "garbage.png", "empty.png",
                             "truncated.mp4", "deleted.png", "whole.mp4"}) {
        files.append(listed(file(name)));
    }
    ASSERT_TRUE(QFile::remove(file("deleted.png")));  // gone since the listing
    Announcements announced(thumbnailer);
    fillAndWait(files);

    EXPECT_EQ(announced.finishedFillings, 1);
    EXPECT_EQ(announced.decoded.size(), files.size()) << "failed decodes are announced too";
    EXPECT_EQ(files[0].item.thumbnail().size(), QSize(200, 100));
    EXPECT_EQ(files[0].item.thumbnail().pixelColor(100, 50), QColor(Qt::red));
    EXPECT_EQ(files[6].item.thumbnail().size(), QSize(200, 150));
    for (qsizetype i = 1; i < 6; ++i) {
        EXPECT_TRUE(files[i].item.thumbnail().isNull()) << files[i].item.fileName().toStdString();
        EXPECT_TRUE(thumbnailer.decode(files[i].source.path).isNull());
    }
}

TEST_F(ThumbnailerTest, AOneBitPaletteImageKeepsItsColourWhenItsThumbnailIsScaled) {
    // The shape of a flat PNG written by many tools: a two-colour palette.
    QImage flat(640, 400, QImage::Format_Mono);
    flat.setColorTable({QColor(255, 165, 0).rgb(), qRgb(0, 0, 0)});
    flat.fill(0);
    ASSERT_TRUE(flat.save(file("flat.png"), "PNG"));
    const QImage thumbnail = thumbnailer.decode(file("flat.png"));
    ASSERT_FALSE(thumbnail.isNull());
    const QImage tile =
        thumbnail.scaled(100, 63, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    EXPECT_EQ(tile.pixelColor(10, 10), QColor(255, 165, 0));
    EXPECT_EQ(tile.pixelColor(11, 10), QColor(255, 165, 0));
}

TEST_F(ThumbnailerTest, ACachedFileIsNotDecodedAgainUntilItsSizeChanges) {
    savePicture(file("shot.png"), {400, 400}, Qt::red);
    QList<ListedFile> files{listed(file("shot.png"))};
    fillAndWait(files);
    ASSERT_EQ(files[0].item.thumbnail().pixelColor(10, 10), QColor(Qt::red));
    const qint64 firstDecode = files[0].item.thumbnail().cacheKey();

    // Same id, same size: the cached picture, handed over without a filling.
    Announcements announced(thumbnailer);
    QList<ListedFile> again{listed(file("shot.png"))};
    fillAndWait(again);
    EXPECT_EQ(again[0].item.thumbnail().cacheKey(), firstDecode);
    EXPECT_EQ(announced.finishedFillings, 0);

    // Rewritten under the same id with another size: decoded again.
    savePicture(file("shot.png"), {400, 300}, Qt::green);
    QList<ListedFile> rewritten{listed(file("shot.png"))};
    ASSERT_EQ(rewritten[0].item.id(), files[0].item.id());
    ASSERT_NE(rewritten[0].source.fileSize, files[0].source.fileSize);
    fillAndWait(rewritten);
    EXPECT_EQ(announced.finishedFillings, 1);
    EXPECT_EQ(rewritten[0].item.thumbnail().size(), QSize(200, 150));
    EXPECT_EQ(rewritten[0].item.thumbnail().pixelColor(10, 10), QColor(Qt::green));
}

TEST_F(ThumbnailerTest, ASupersededFillingOnlyFeedsTheCache) {
    const auto reader = std::make_shared<GatedVideoFrameReader>();
    Thumbnailer gated(reader);
    Announcements announced(gated);
    QList<ScreenshotItem> older;
    std::vector<Thumbnailer::Source> olderSources;
    for (const char* name : {"a.mp4", "b.mp4", "c.mp4"}) {
        ASSERT_TRUE(writeSampleVideo(file(name)));
        const ListedFile listedFile = listed(file(name));
        older.append(listedFile.item);
        olderSources.push_back(listedFile.source);
    }
    savePicture(file("newer.png"), {100, 100}, Qt::blue);
    const ListedFile newer = listed(file("newer.png"));

    gated.fill(older, olderSources);
    ASSERT_TRUE(QTest::qWaitFor([&] { return reader->entered > 0; }, kFillTimeoutMs));
    QList<ScreenshotItem> newerItems{newer.item};
    gated.fill(newerItems, {newer.source});
    reader->open = true;
    ASSERT_TRUE(QTest::qWaitFor([&] { return !gated.isFilling(); }, kFillTimeoutMs));

    EXPECT_EQ(announced.finishedFillings, 2);
    EXPECT_EQ(announced.decoded.keys(), QList<QString>{newer.item.id()})
        << "the older list's thumbnails are not announced";

    // The videos a worker had started on came out of the cache when the
    // older list is filled again; only the others are read again.
    const int readBeforeRefill = reader->entered;
    gated.fill(older, olderSources);
    qsizetype fromCache = 0;
    for (const ScreenshotItem& item : older) {
        fromCache += item.thumbnail().isNull() ? 0 : 1;
    }
    EXPECT_GE(fromCache, 1);
    EXPECT_EQ(fromCache, readBeforeRefill);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !gated.isFilling(); }, kFillTimeoutMs));
    EXPECT_EQ(reader->entered, older.size());
}

}  // namespace
