// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QDateTime>
#include <QFuture>
#include <QHash>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QThreadPool>
#include <atomic>
#include <functional>
#include <memory>

#include "library/capture_file_rename.h"
#include "library/screenshot_item.h"
#include "library/thumbnailer.h"

class CaptureRegistry;
class QFileSystemWatcher;
class Preferences;
class UserSettings;
class VideoFrameReader;

// The gallery's model: the newest capture files (png, mp4 and mov) in the
// Desktop and Pictures/Screenshots folders, newest first, each with a small
// thumbnail. With the own-captures setting on, only files whose inode the
// capture registry holds are listed. The list is rescanned when a folder
// changes, when the own-captures setting or "maxScreenshots" changes and on
// request; items can be moved to the trash one at a time, by age and beyond
// a count. Renames and moves to the trash made through the store are
// announced (fileRenamed, filesTrashed), so that a window showing a file can
// follow it.
//
// Confined to the GUI thread. Scans (listing, dates, the registry filter)
// and file moves run on the store's worker threads, thumbnails are decoded
// and cached by its Thumbnailer; results are published on the GUI thread. A
// scan publishes the list as soon as the files are listed, with the
// thumbnails already cached; the missing ones are then decoded in parallel
// and handed over in batches (thumbnailsChanged), so the gallery can draw
// long before every picture is decoded. At most one scan runs at a time and
// at most one more waits: all requests that arrive while a scan runs (a
// burst of folder events) cost one more scan, which starts after the running
// one is published, so the newest state of the folders always wins. A
// published scan ends the thumbnail filling of the one before; what that
// filling already decoded is kept in the cache for later scans.
class ScreenshotStore : public QObject {
    Q_OBJECT

public:
    // Desktop and Pictures/Screenshots of the user, with the shared registry,
    // settings and preferences. Created on first use.
    static ScreenshotStore& shared();

    // Scans `desktopFolder` then `screenshotsFolder`. A null
    // `videoFrameReader` means FFmpeg. The first scan starts at once and is
    // published from the event loop, never before the constructor's caller
    // returns to it.
    ScreenshotStore(const QString& desktopFolder, const QString& screenshotsFolder,
                    CaptureRegistry& registry, UserSettings& settings, Preferences& preferences,
                    std::shared_ptr<const VideoFrameReader> videoFrameReader = nullptr,
                    QObject* parent = nullptr);
    ~ScreenshotStore() override;

    ScreenshotStore(const ScreenshotStore&) = delete;
    ScreenshotStore& operator=(const ScreenshotStore&) = delete;

    // Newest first.
    const QList<ScreenshotItem>& screenshots() const { return screenshots_; }

    const QStringList& scanFolders() const { return scanFolders_; }
    // The scan folders being watched; a folder missing at construction is not.
    QStringList watchedFolders() const;

    // Rescans and publishes. May be called from any thread.
    void refresh();

    // Stops watching and waits for the scans and thumbnails under way: called
    // as the program quits, so that no worker runs while it is torn down.
    void stopWork();

    // Lists a just-written recording at the front without waiting for a
    // rescan and records it as the program's own.
    void insertNewCapture(const QString& path);

    // Drops the item (and any other with its id) from the list at once and
    // moves its file to the trash in the background; a failed move is
    // ignored. autoClear and pruneBeyond move files the same way.
    void moveToTrash(const ScreenshotItem& item);

    // Drops the item from the list and leaves its file alone.
    void removeFromList(const ScreenshotItem& item);

    // Moves the file at `path` to `newPath` on a worker thread, never
    // replacing a file that exists there. On success fileRenamed is emitted
    // and the folders are rescanned. The future finishes on the GUI thread
    // after that, with the move's result.
    QFuture<CaptureRenameResult> renameFile(const QString& path, const QString& newPath);

    // Moves every listed item created more than `days` days before `now` to
    // the trash; unlisted files are never touched and nothing is rescanned.
    // Days below 1 do nothing.
    void autoClear(int days, const QDateTime& now = QDateTime::currentDateTimeUtc());

    // Trashes the files of every item after the first `limit`, then keeps
    // only those.
    void pruneBeyond(int limit);
    void trimTo(int count);

    void stopWatching();

    // For tests and benchmarks: whether no scan, thumbnail filling or file
    // operation is running or waiting (so when idle, every thumbnail is
    // published), how many scans have been published, and a wait (running
    // the event loop) until idle; false when `timeoutMs` ran out first.
    bool isIdle() const;
    int publishedScanCount() const { return publishedScanCount_; }
    bool waitForIdle(int timeoutMs = 30000);

Q_SIGNALS:
    // The list changed (a scan was published or the list was edited).
    void screenshotsChanged();
    // A scan's result became the list.
    void scanPublished();
    // Thumbnails arrived for the listed items with these ids; the list
    // itself is unchanged.
    void thumbnailsChanged(const QStringList& ids);
    // The last running scan, thumbnail filling or file operation finished
    // and none waits.
    void becameIdle();
    // renameFile moved a file.
    void fileRenamed(const QString& oldPath, const QString& newPath);
    // These files were moved to the trash (a move that failed is left out).
    void filesTrashed(const QStringList& paths);

private:
    struct ScanRequest;
    struct ScanResult;

    static ScanResult scan(const ScanRequest& request);
    void startScan();
    void handleRequestInTransit();
    void publish(const ScanResult& result);
    void showThumbnails(const QHash<QString, QImage>& thumbnailsById);
    void startWatching();
    void trashFiles(const QStringList& paths);
    void insertAtFront(const ScreenshotItem& item, qint64 fileSize);
    void removeWhere(const std::function<bool(const ScreenshotItem&)>& shouldRemove);
    void finishFileOperation();
    void emitIfIdle();

    QStringList scanFolders_;
    CaptureRegistry& registry_;
    UserSettings& settings_;
    Preferences& preferences_;

    QList<ScreenshotItem> screenshots_;
    QFileSystemWatcher* watcher_ = nullptr;

    // refresh() calls from other threads that the GUI thread has not yet
    // handled; they keep the store from counting as idle.
    std::atomic<int> requestsInTransit_ = 0;
    bool scanRunning_ = false;
    bool scanWaiting_ = false;
    int fileOperationsRunning_ = 0;
    int publishedScanCount_ = 0;

    // Decodes on threads of its own, so that a thumbnail filling never holds
    // back a scan or a file move.
    Thumbnailer thumbnailer_;
    // Declared last so that it is destroyed first; the destructor also waits
    // for it, so no job outlives the members it reads (the thumbnailer
    // included).
    QThreadPool pool_;
};
