// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "library/screenshot_store.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QTest>
#include <QThread>
#include <QTimeZone>
#include <QtConcurrent/QtConcurrentRun>
#include <atomic>
#include <memory>

#include "library/capture_registry.h"
#include "library/image_allocation_limit.h"
#include "platform/ffmpeg/ffmpeg_video_frame_reader.h"
#include "sample_video.h"
#include "storage/preferences.h"
#include "storage/user_settings.h"
#include "support/test_support.h"

namespace {

constexpr int kEventTimeoutMs = 5000;

// Left half `left`, right half `right`.
void writePng(const QString& path, QSize size = {8, 8}, QColor left = Qt::red,
              QColor right = Qt::blue) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(left);
    QPainter(&image).fillRect(size.width() / 2, 0, size.width() - size.width() / 2, size.height(),
                              right);
    QDir().mkpath(QFileInfo(path).absolutePath());
    ASSERT_TRUE(image.save(path, "PNG")) << path.toStdString();
}

// File times are taken from a coarse kernel clock; a pause this long puts
// files written before and after it in a known order.
void pauseBetweenFileTimes() {
    QThread::msleep(40);
}

class ScreenshotStoreTest : public testing::Test {
protected:
    void SetUp() override {
        // QFile::moveToTrash uses $XDG_DATA_HOME/Trash.
        qputenv("XDG_DATA_HOME", folder.path("data").toUtf8());
        QDir().mkpath(desktop());
        // Most cases are about files, not ownership; the filter has its own.
        settings.setShowOnlyQuillixItems(false);
    }

    QString desktop(const QString& name = {}) const { return inFolder("Desktop", name); }
    QString screenshots(const QString& name = {}) const {
        return inFolder("Pictures/Screenshots", name);
    }
    QString inFolder(const QString& relativeFolder, const QString& name) const {
        return folder.path(name.isEmpty() ? relativeFolder : relativeFolder + "/" + name);
    }
    QString trashed(const QString& name) const {
        return folder.path(QStringLiteral("data/Trash/files/") + name);
    }

    // A store whose first scan has been published.
    std::unique_ptr<ScreenshotStore> openStore() {
        auto store = std::make_unique<ScreenshotStore>(desktop(), screenshots(), registry, settings,
                                                       preferences);
        EXPECT_TRUE(store->waitForIdle());
        return store;
    }

    static QStringList names(const ScreenshotStore& store, bool sorted = false) {
        QStringList result;
        for (const ScreenshotItem& item : store.screenshots()) {
            result.append(item.fileName());
        }
        if (sorted) {
            result.sort();
        }
        return result;
    }
    static const ScreenshotItem* find(const ScreenshotStore& store, const QString& name) {
        for (const ScreenshotItem& item : store.screenshots()) {
            if (item.fileName() == name) {
                return &item;
            }
        }
        return nullptr;
    }
    static bool waitForNames(const ScreenshotStore& store, QStringList expected) {
        expected.sort();
        return QTest::qWaitFor([&] { return names(store, true) == expected; }, kEventTimeoutMs);
    }

    TestFolder folder;
    CaptureRegistry registry{folder.dataDir(), folder.legacyDir()};
    UserSettings settings{folder.dataDir(), folder.legacyDir()};
    Preferences preferences{folder.path("config/Quillix/Quillix.conf")};
};

TEST_F(ScreenshotStoreTest, ListsPngMp4AndMovOfBothFoldersInAnyCase) {
    writePng(desktop("X.PNG"));
    writePng(desktop("shot.png"));
    writeFileBytes(desktop("clip.Mov"), "not really a movie");
    writeFileBytes(screenshots("recording.mp4"), "not really a movie");
    writeFileBytes(desktop("X.jpg"), "jpeg");
    writeFileBytes(desktop("X.mp3"), "mp3");
    writeFileBytes(desktop("png"), "no extension");
    writePng(desktop(".hidden.png"));
    writePng(desktop("folder.png/inside.png"));

    const auto store = openStore();
    EXPECT_EQ(names(*store, true), QStringList({"X.PNG", "clip.Mov", "recording.mp4", "shot.png"}));
}

TEST_F(ScreenshotStoreTest, OwnCapturesFilterFollowsTheSettingWithoutRestart) {
    writePng(desktop("own.png"));
    registry.record(desktop("own.png"));
    writePng(desktop("other-tool.png"));
    settings.setShowOnlyQuillixItems(true);

    const auto store = openStore();
    EXPECT_EQ(names(*store), QStringList{"own.png"});

    settings.setShowOnlyQuillixItems(false);
    ASSERT_TRUE(store->waitForIdle());
    EXPECT_EQ(names(*store).size(), 2);

    settings.setShowOnlyQuillixItems(true);
    ASSERT_TRUE(store->waitForIdle());
    EXPECT_EQ(names(*store), QStringList{"own.png"});
}

TEST_F(ScreenshotStoreTest, MissingScreenshotsFolderIsNotWatchedUntilSomethingElseRescans) {
    const auto store = openStore();
    EXPECT_TRUE(store->screenshots().isEmpty());
    EXPECT_EQ(store->watchedFolders(), QStringList{desktop()});

    writePng(screenshots("late.png"));
    QTest::qWait(500);
    EXPECT_TRUE(store->screenshots().isEmpty());

    writePng(desktop("trigger.png"));
    EXPECT_TRUE(waitForNames(*store, {"late.png", "trigger.png"}));
}

TEST_F(ScreenshotStoreTest, FolderChangesRescanAndRenamingMakesANewItem) {
    const auto store = openStore();
    writePng(desktop("a.png"));
    ASSERT_TRUE(waitForNames(*store, {"a.png"}));
    const QString oldId = store->screenshots().first().id();

    ASSERT_TRUE(QFile::rename(desktop("a.png"), desktop("b.png")));
    ASSERT_TRUE(waitForNames(*store, {"b.png"}));
    const ScreenshotItem& renamed = store->screenshots().first();
    EXPECT_NE(renamed.id(), oldId);
    EXPECT_TRUE(renamed.id().startsWith(desktop("b.png") + "-"));

    ASSERT_TRUE(QFile::remove(desktop("b.png")));
    EXPECT_TRUE(waitForNames(*store, {}));
}

TEST_F(ScreenshotStoreTest, NewestFirstAndMaxScreenshotsIsTheListLength) {
    for (const char* name : {"1.png", "2.png", "3.png", "4.png"}) {
        writePng(desktop(name));
        pauseBetweenFileTimes();
    }
    const auto store = openStore();
    EXPECT_EQ(names(*store), QStringList({"4.png", "3.png", "2.png", "1.png"}));

    preferences.setMaxScreenshots(2);
    ASSERT_TRUE(store->waitForIdle());
    EXPECT_EQ(names(*store), QStringList({"4.png", "3.png"}));

    preferences.setMaxScreenshots(0);  // below 1 reads as 200
    ASSERT_TRUE(store->waitForIdle());
    EXPECT_EQ(names(*store).size(), 4);
    EXPECT_EQ(QDir(desktop()).entryList(QDir::Files).size(), 4);
}

TEST_F(ScreenshotStoreTest, Of250FilesTheNewest200AreListedAndNoneDeleted) {
    for (int i = 0; i < 50; ++i) {
        writePng(desktop(QStringLiteral("old-%1.png").arg(i)));
    }
    pauseBetweenFileTimes();
    for (int i = 0; i < 200; ++i) {
        writePng(screenshots(QStringLiteral("new-%1.png").arg(i)));
    }

    const auto store = openStore();
    ASSERT_EQ(store->screenshots().size(), 200);
    for (const ScreenshotItem& item : store->screenshots()) {
        EXPECT_TRUE(item.fileName().startsWith("new-")) << item.fileName().toStdString();
    }
    EXPECT_EQ(QDir(desktop()).entryList(QDir::Files).size(), 50);
    EXPECT_EQ(QDir(screenshots()).entryList(QDir::Files).size(), 200);
    EXPECT_FALSE(QFileInfo::exists(folder.path("data/Trash")));
}

TEST_F(ScreenshotStoreTest, DatesComeFromBirthTimeElseModificationTimeAndMakeTheId) {
    const QString path = desktop("dated.png");
    writePng(path);
    const QDateTime modified = QDateTime::fromMSecsSinceEpoch(1700000000250, QTimeZone::utc());
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(modified, QFileDevice::FileModificationTime));
    }
    const QFileInfo info(path);

    const auto store = openStore();
    ASSERT_EQ(store->screenshots().size(), 1);
    const ScreenshotItem& item = store->screenshots().first();
    EXPECT_EQ(item.modifiedDate(), modified);
    // This file system may or may not record birth times; both are covered.
    EXPECT_EQ(item.date(), info.birthTime().isValid() ? info.birthTime() : modified);
    EXPECT_EQ(item.id(), path + "-1700000000.25");
    EXPECT_EQ(item.url(), QUrl::fromLocalFile(path));
}

TEST_F(ScreenshotStoreTest, AutoClearTrashesOnlyListedItemsOlderThanTheCutoff) {
    writePng(desktop("beyond-limit.png"));
    pauseBetweenFileTimes();
    writePng(desktop("old-1.png"));
    // Written in the same clock tick, the two would tie and list in either order.
    pauseBetweenFileTimes();
    writePng(screenshots("old-2.png"));
    pauseBetweenFileTimes();
    const QDateTime between = QDateTime::currentDateTimeUtc();
    pauseBetweenFileTimes();
    writePng(desktop("recent.png"));
    preferences.setMaxScreenshots(3);

    const auto store = openStore();
    ASSERT_EQ(names(*store), QStringList({"recent.png", "old-2.png", "old-1.png"}));

    store->stopWatching();  // the list must show what autoClear left
    // As if a day had passed since `between`.
    store->autoClear(1, between.addDays(1));
    EXPECT_EQ(names(*store), QStringList{"recent.png"});
    ASSERT_TRUE(store->waitForIdle());
    EXPECT_TRUE(QFileInfo::exists(trashed("old-1.png")));
    EXPECT_TRUE(QFileInfo::exists(trashed("old-2.png")));
    EXPECT_FALSE(QFileInfo::exists(screenshots("old-2.png")));
    EXPECT_TRUE(QFileInfo::exists(desktop("recent.png")));
    EXPECT_TRUE(QFileInfo::exists(desktop("beyond-limit.png"))) << "unlisted files stay";

    store->autoClear(0, between.addYears(1));
    EXPECT_EQ(names(*store), QStringList{"recent.png"});
}

TEST_F(ScreenshotStoreTest, AutoClearBeforeTheFirstPublicationDoesNothing) {
    writePng(desktop("a.png"));
    writePng(desktop("b.png"));

    ScreenshotStore store(desktop(), screenshots(), registry, settings, preferences);
    EXPECT_TRUE(store.screenshots().isEmpty());
    store.autoClear(1, QDateTime::currentDateTimeUtc().addDays(30));

    ASSERT_TRUE(store.waitForIdle());
    EXPECT_EQ(names(store).size(), 2);
    EXPECT_TRUE(QFileInfo::exists(desktop("a.png")));
    EXPECT_TRUE(QFileInfo::exists(desktop("b.png")));
    EXPECT_FALSE(QFileInfo::exists(folder.path("data/Trash")));
}

TEST_F(ScreenshotStoreTest, ThumbnailsFitIn200PixelsAndKeepThePicture) {
    writePng(desktop("wide.png"), {1000, 500});
    writePng(desktop("tall.png"), {300, 900});
    writePng(desktop("small.png"), {120, 80});
    ASSERT_TRUE(writeSampleVideo(desktop("recording.mp4")));
    ASSERT_TRUE(writeSampleVideo(screenshots("recording.mov")));

    const auto store = openStore();
    const QImage wide = find(*store, "wide.png")->thumbnail();
    EXPECT_EQ(wide.size(), QSize(200, 100));
    EXPECT_EQ(wide.pixelColor(20, 50), QColor(Qt::red));
    EXPECT_EQ(wide.pixelColor(180, 50), QColor(Qt::blue));
    EXPECT_EQ(find(*store, "tall.png")->thumbnail().size(), QSize(67, 200));
    EXPECT_EQ(find(*store, "small.png")->thumbnail().size(), QSize(120, 80)) << "never enlarged";
    EXPECT_EQ(find(*store, "recording.mp4")->thumbnail().size(), QSize(200, 150));
    EXPECT_EQ(find(*store, "recording.mov")->thumbnail().size(), QSize(200, 150));
}

TEST_F(ScreenshotStoreTest, DamagedFilesAreListedWithoutThumbnail) {
    writeFileBytes(desktop("corrupt.png"), QByteArray("\x89PNG\r\n\x1a\n", 8) + "garbage");
    writeFileBytes(desktop("empty.png"), {});
    writeFileBytes(desktop("corrupt.mp4"), QByteArray(4096, 'x'));
    ASSERT_TRUE(writeSampleVideo(folder.path("whole.mp4")));
    const QByteArray video = readFileBytes(folder.path("whole.mp4"));
    writeFileBytes(desktop("truncated.mov"), video.left(video.size() / 2));

    const auto store = openStore();
    ASSERT_EQ(store->screenshots().size(), 4);
    for (const ScreenshotItem& item : store->screenshots()) {
        EXPECT_TRUE(item.thumbnail().isNull()) << item.fileName().toStdString();
    }
}

TEST_F(ScreenshotStoreTest, RescanReusesThumbnailsOfUnchangedFilesOnly) {
    writePng(desktop("kept.png"), {400, 400});
    writePng(desktop("rewritten.png"), {400, 400});
    const auto store = openStore();
    const qint64 keptKey = find(*store, "kept.png")->thumbnail().cacheKey();
    const QString rewrittenId = find(*store, "rewritten.png")->id();

    pauseBetweenFileTimes();
    writePng(desktop("rewritten.png"), {400, 400}, Qt::green, Qt::green);
    store->refresh();
    ASSERT_TRUE(store->waitForIdle());

    EXPECT_EQ(find(*store, "kept.png")->thumbnail().cacheKey(), keptKey);
    const ScreenshotItem* rewritten = find(*store, "rewritten.png");
    EXPECT_NE(rewritten->id(), rewrittenId);
    EXPECT_EQ(rewritten->thumbnail().pixelColor(10, 10), QColor(Qt::green));
}

TEST_F(ScreenshotStoreTest, RequestsDuringAScanCollapseIntoOneAndTheLastStateWins) {
    writePng(desktop("first.png"));
    const auto store = openStore();
    store->stopWatching();

    // The first request starts a scan; the rest fold into one waiting scan,
    // which starts after the first is published and so sees second.png.
    int before = store->publishedScanCount();
    for (int i = 0; i < 50; ++i) {
        store->refresh();
    }
    writePng(desktop("second.png"));
    for (int i = 0; i < 50; ++i) {
        store->refresh();
    }
    ASSERT_TRUE(store->waitForIdle());
    EXPECT_EQ(store->publishedScanCount() - before, 2);
    EXPECT_EQ(names(*store), QStringList({"second.png", "first.png"}));

    // Requests from other threads are handed to the GUI thread and collapse
    // the same way.
    before = store->publishedScanCount();
    writePng(desktop("third.png"));
    QtConcurrent::run([&store] {
        for (int i = 0; i < 50; ++i) {
            store->refresh();
        }
    }).waitForFinished();
    ASSERT_TRUE(store->waitForIdle());
    EXPECT_EQ(store->publishedScanCount() - before, 2);
    EXPECT_EQ(names(*store), QStringList({"third.png", "second.png", "first.png"}));
}

TEST_F(ScreenshotStoreTest, InsertNewCaptureListsItFirstAndRecordsItAsOwn) {
    settings.setShowOnlyQuillixItems(true);
    writePng(desktop("earlier.png"));
    registry.record(desktop("earlier.png"));
    const auto store = openStore();
    store->stopWatching();  // only the insertion can list the recording

    const QString recording = desktop("Recording_1700000000.mp4");
    ASSERT_TRUE(writeSampleVideo(recording));
    EXPECT_FALSE(registry.contains(inodeOf(recording)));
    store->insertNewCapture(recording);
    EXPECT_TRUE(registry.contains(inodeOf(recording)));
    ASSERT_TRUE(store->waitForIdle());

    ASSERT_EQ(names(*store), QStringList({"Recording_1700000000.mp4", "earlier.png"}));
    const ScreenshotItem& inserted = store->screenshots().first();
    EXPECT_EQ(inserted.thumbnail().size(), QSize(200, 150));
    EXPECT_EQ(inserted.relativeAge(), "now");

    store->refresh();  // owned now, so a rescan keeps it
    ASSERT_TRUE(store->waitForIdle());
    EXPECT_EQ(names(*store), QStringList({"Recording_1700000000.mp4", "earlier.png"}));
}

TEST_F(ScreenshotStoreTest, MoveToTrashMovesTheFileAndRemoveFromListLeavesIt) {
    writePng(desktop("trash-me.png"), {16, 16}, Qt::yellow, Qt::yellow);
    writePng(desktop("keep-file.png"));
    const QByteArray bytes = readFileBytes(desktop("trash-me.png"));
    const auto store = openStore();

    store->moveToTrash(*find(*store, "trash-me.png"));
    EXPECT_EQ(names(*store), QStringList{"keep-file.png"});
    ASSERT_TRUE(store->waitForIdle());
    EXPECT_FALSE(QFileInfo::exists(desktop("trash-me.png")));
    EXPECT_EQ(readFileBytes(trashed("trash-me.png")), bytes);
    EXPECT_TRUE(QFileInfo::exists(folder.path("data/Trash/info/trash-me.png.trashinfo")));

    store->removeFromList(store->screenshots().first());
    EXPECT_TRUE(store->screenshots().isEmpty());
    EXPECT_TRUE(QFileInfo::exists(desktop("keep-file.png")));
}

TEST_F(ScreenshotStoreTest, RenamesAndTrashMovesAreAnnouncedForWindowsShowingTheFile) {
    writePng(desktop("shown.png"));
    writePng(desktop("taken.png"));
    const auto store = openStore();
    QStringList renamed;
    QStringList trashedPaths;
    QObject::connect(store.get(), &ScreenshotStore::fileRenamed,
                     [&](const QString& from, const QString& to) { renamed << from << to; });
    QObject::connect(store.get(), &ScreenshotStore::filesTrashed,
                     [&](const QStringList& paths) { trashedPaths << paths; });

    // A name that is taken fails, announces nothing and keeps both files.
    QFuture<CaptureRenameResult> refused =
        store->renameFile(desktop("shown.png"), desktop("taken.png"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return refused.isFinished(); }, kEventTimeoutMs));
    EXPECT_FALSE(refused.result().succeeded());
    EXPECT_TRUE(renamed.isEmpty());

    QFuture<CaptureRenameResult> moved =
        store->renameFile(desktop("shown.png"), desktop("Bug.png"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return moved.isFinished(); }, kEventTimeoutMs));
    EXPECT_TRUE(moved.result().succeeded());
    EXPECT_EQ(renamed, (QStringList{desktop("shown.png"), desktop("Bug.png")}));
    EXPECT_TRUE(waitForNames(*store, {"Bug.png", "taken.png"}));  // rescanned

    // A trash move is announced once the file is gone; a failed one is not.
    store->moveToTrash(*find(*store, "Bug.png"));
    ASSERT_TRUE(store->waitForIdle());
    EXPECT_EQ(trashedPaths, QStringList{desktop("Bug.png")});
    EXPECT_TRUE(QFileInfo::exists(trashed("Bug.png")));
    store->moveToTrash(ScreenshotItem(desktop("missing.png"), {}, {}));
    ASSERT_TRUE(store->waitForIdle());
    EXPECT_EQ(trashedPaths, QStringList{desktop("Bug.png")});
}

TEST_F(ScreenshotStoreTest, PruneBeyondTrashesTheTailAndTrimToOnlyShortens) {
    for (const char* name : {"1.png", "2.png", "3.png", "4.png"}) {
        writePng(desktop(name));
        pauseBetweenFileTimes();
    }
    const auto store = openStore();
    store->stopWatching();

    store->pruneBeyond(2);
    EXPECT_EQ(names(*store), QStringList({"4.png", "3.png"}));
    ASSERT_TRUE(store->waitForIdle());
    EXPECT_TRUE(QFileInfo::exists(trashed("1.png")));
    EXPECT_TRUE(QFileInfo::exists(trashed("2.png")));

    store->trimTo(1);
    EXPECT_EQ(names(*store), QStringList{"4.png"});
    EXPECT_TRUE(QFileInfo::exists(desktop("3.png")));
}

// The real FFmpeg reader, counting how often the store asks it for a frame.
class CountingVideoFrameReader : public VideoFrameReader {
public:
    QImage firstFrame(const QString& path, int maxSide) const override {
        ++calls;
        return reader_.firstFrame(path, maxSide);
    }
    mutable std::atomic<int> calls = 0;

private:
    FfmpegVideoFrameReader reader_;
};

// What a store published, in order, from its construction on.
struct PublicationLog {
    explicit PublicationLog(ScreenshotStore& store) {
        QObject::connect(&store, &ScreenshotStore::screenshotsChanged, [this, &store] {
            ++listChanges;
            qsizetype missing = 0;
            for (const ScreenshotItem& item : store.screenshots()) {
                missing += item.thumbnail().isNull() ? 1 : 0;
            }
            missingThumbnailsPerList.append(missing);
        });
        QObject::connect(&store, &ScreenshotStore::thumbnailsChanged,
                         [this](const QStringList& ids) {
                             ++thumbnailUpdates;
                             thumbnailIds += ids;
                         });
    }
    int listChanges = 0;
    QList<qsizetype> missingThumbnailsPerList;
    int thumbnailUpdates = 0;
    QStringList thumbnailIds;
};

// By default large enough that decoding them takes a while on any machine.
QStringList writeLargePngs(const QString& folder, int count, QSize size = {1600, 1000},
                           QColor left = Qt::red, QColor right = Qt::blue) {
    QStringList names;
    for (int i = 0; i < count; ++i) {
        names.append(QStringLiteral("large-%1.png").arg(i, 2, 10, QLatin1Char('0')));
        writePng(folder + "/" + names.last(), size, left, right);
    }
    return names;
}

bool everyThumbnailShows(const ScreenshotStore& store, QColor left, QColor right) {
    for (const ScreenshotItem& item : store.screenshots()) {
        const QImage& thumbnail = item.thumbnail();
        if (thumbnail.size() != QSize(200, 125) || thumbnail.pixelColor(20, 60) != left ||
            thumbnail.pixelColor(180, 60) != right) {
            ADD_FAILURE() << item.fileName().toStdString() << " has no proper thumbnail";
            return false;
        }
    }
    return true;
}

TEST_F(ScreenshotStoreTest, TheListIsPublishedBeforeItsThumbnailsWhichFollowInBatches) {
    writeLargePngs(desktop(), 40, {800, 500}, Qt::green, Qt::yellow);
    ScreenshotStore store(desktop(), screenshots(), registry, settings, preferences);
    store.stopWatching();
    const PublicationLog log(store);
    ASSERT_TRUE(store.waitForIdle());

    EXPECT_EQ(log.listChanges, 1) << "thumbnails never republish the list";
    ASSERT_EQ(log.missingThumbnailsPerList, QList<qsizetype>{40}) << "listed before decoding";
    ASSERT_EQ(store.screenshots().size(), 40);
    EXPECT_TRUE(everyThumbnailShows(store, Qt::green, Qt::yellow));
    QStringList updatedIds = log.thumbnailIds;
    QStringList listedIds;
    for (const ScreenshotItem& item : store.screenshots()) {
        listedIds.append(item.id());
    }
    updatedIds.sort();
    listedIds.sort();
    EXPECT_EQ(updatedIds, listedIds) << "each thumbnail announced once";
    EXPECT_GE(log.thumbnailUpdates, 1);
    EXPECT_LT(log.thumbnailUpdates, 40) << "handed over in batches";

    // A rescan of unchanged files publishes them with their thumbnails.
    store.refresh();
    ASSERT_TRUE(store.waitForIdle());
    EXPECT_EQ(log.missingThumbnailsPerList.last(), 0);
    EXPECT_EQ(log.thumbnailIds.size(), 40) << "nothing decoded again";
}

TEST_F(ScreenshotStoreTest, ARescanDuringTheThumbnailFillingListsTheNewStateAndFillsEverything) {
    const QStringList files = writeLargePngs(desktop(), 30);
    ScreenshotStore store(desktop(), screenshots(), registry, settings, preferences);
    store.stopWatching();
    QObject::connect(&store, &ScreenshotStore::scanPublished, [&] {
        if (store.publishedScanCount() != 1) {
            return;
        }
        pauseBetweenFileTimes();
        writePng(desktop("late.png"), {1600, 1000});
        ASSERT_TRUE(QFile::remove(desktop(files.first())));
        store.refresh();
    });
    const PublicationLog log(store);
    ASSERT_TRUE(store.waitForIdle());

    EXPECT_EQ(store.publishedScanCount(), 2);
    ASSERT_EQ(store.screenshots().size(), 30);
    EXPECT_EQ(store.screenshots().first().fileName(), "late.png");
    EXPECT_EQ(find(store, files.first()), nullptr);
    EXPECT_TRUE(everyThumbnailShows(store, Qt::red, Qt::blue));
    EXPECT_EQ(log.listChanges, 2);
}

TEST_F(ScreenshotStoreTest, AFileDeletedDuringTheFillingStaysWithoutThumbnailUntilTheNextScan) {
    const QStringList files = writeLargePngs(desktop(), 30);
    ScreenshotStore store(desktop(), screenshots(), registry, settings, preferences);
    store.stopWatching();
    QString deleted;
    QObject::connect(&store, &ScreenshotStore::scanPublished, [&] {
        // The oldest file is decoded last, so it is gone before its turn.
        if (deleted.isEmpty()) {
            deleted = store.screenshots().last().fileName();
            EXPECT_TRUE(QFile::remove(desktop(deleted)));
        }
    });
    ASSERT_TRUE(store.waitForIdle());

    ASSERT_EQ(store.screenshots().size(), 30);
    ASSERT_NE(find(store, deleted), nullptr);
    EXPECT_TRUE(find(store, deleted)->thumbnail().isNull());
    store.removeFromList(*find(store, deleted));
    EXPECT_TRUE(everyThumbnailShows(store, Qt::red, Qt::blue));

    store.refresh();
    ASSERT_TRUE(store.waitForIdle());
    EXPECT_EQ(store.screenshots().size(), 29);
    EXPECT_EQ(find(store, deleted), nullptr);
}

TEST_F(ScreenshotStoreTest, VideosWithoutAFrameAreNotReadAgainOnRescan) {
    writeFileBytes(desktop("corrupt.mp4"), QByteArray(4096, 'x'));
    ASSERT_TRUE(writeSampleVideo(desktop("good.mp4")));
    const auto reader = std::make_shared<CountingVideoFrameReader>();
    ScreenshotStore store(desktop(), screenshots(), registry, settings, preferences, reader);
    store.stopWatching();
    const PublicationLog log(store);
    ASSERT_TRUE(store.waitForIdle());
    ASSERT_EQ(reader->calls, 2);
    EXPECT_TRUE(find(store, "corrupt.mp4")->thumbnail().isNull());
    EXPECT_FALSE(find(store, "good.mp4")->thumbnail().isNull());

    store.refresh();
    store.refresh();
    ASSERT_TRUE(store.waitForIdle());
    EXPECT_EQ(reader->calls, 2);
    EXPECT_EQ(log.thumbnailIds.size(), 2);
    EXPECT_TRUE(find(store, "corrupt.mp4")->thumbnail().isNull());
    EXPECT_FALSE(find(store, "good.mp4")->thumbnail().isNull());
}

TEST(ScreenshotItemTest, RelativeAgeCutsOffToWholeUnits) {
    const QDateTime now = QDateTime::fromSecsSinceEpoch(1700000000, QTimeZone::utc());
    const auto ageAfter = [&](qint64 milliseconds) {
        return ScreenshotItem("/x.png", now.addMSecs(-milliseconds), now).relativeAge(now);
    };
    EXPECT_EQ(ageAfter(-5000), "now");  // a clock set back
    EXPECT_EQ(ageAfter(59999), "now");
    EXPECT_EQ(ageAfter(60000), "1m");
    EXPECT_EQ(ageAfter(5 * 60000 + 59999), "5m");
    EXPECT_EQ(ageAfter(3599999), "59m");
    EXPECT_EQ(ageAfter(3600000), "1h");
    EXPECT_EQ(ageAfter(86399999), "23h");
    EXPECT_EQ(ageAfter(86400000), "1d");
    EXPECT_EQ(ageAfter(qint64(12.9 * 86400000)), "12d");
    EXPECT_EQ(ScreenshotItem("/x.png", ScreenshotItem::distantPast(), now).relativeAge(now),
              "738837d");
}

TEST(ScreenshotItemTest, IdIsPathDashAndModificationSeconds) {
    const auto idFor = [](qint64 milliseconds) {
        const QDateTime time = QDateTime::fromMSecsSinceEpoch(milliseconds, QTimeZone::utc());
        return ScreenshotItem("/home/u/Desktop/x.png", time, time).id();
    };
    EXPECT_EQ(idFor(1700000000000), "/home/u/Desktop/x.png-1700000000.0");
    EXPECT_EQ(idFor(1700000000123), "/home/u/Desktop/x.png-1700000000.123");
    EXPECT_EQ(idFor(1700000000500), "/home/u/Desktop/x.png-1700000000.5");
    EXPECT_EQ(idFor(-1500), "/home/u/Desktop/x.png--1.5");
    EXPECT_EQ(ScreenshotItem("/home/u/Desktop/x.png", {}, {}).fileName(), "x.png");
}

}  // namespace

TEST(ImageAllocationLimitTest, AQuarterOfTheMemoryBetweenQtsDefaultAndFourGigabytes) {
    constexpr qint64 gigabyte = 1024LL * 1024 * 1024;
    EXPECT_EQ(imageAllocationLimitMegabytes(0), 256);  // unknown
    EXPECT_EQ(imageAllocationLimitMegabytes(gigabyte / 2), 256);
    EXPECT_EQ(imageAllocationLimitMegabytes(4 * gigabyte), 1024);
    EXPECT_EQ(imageAllocationLimitMegabytes(8 * gigabyte), 2048);
    EXPECT_EQ(imageAllocationLimitMegabytes(64 * gigabyte), 4096);
}
