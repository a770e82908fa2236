// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "library/screenshot_store.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>
#include <QtConcurrent/QtConcurrentRun>
#include <algorithm>
#include <optional>
#include <unordered_set>
#include <utility>
#include <vector>

#include "library/capture_registry.h"
#include "storage/preferences.h"
#include "storage/user_settings.h"

struct ScreenshotStore::ScanRequest {
    QStringList folders;
    bool onlyOwnCaptures = true;
    // A copy taken on the GUI thread: the registry itself is not thread-safe.
    std::unordered_set<quint64> ownInodes;
    int limit = Preferences::kMaxScreenshotsDefault;
};

struct ScreenshotStore::ScanResult {
    // Newest first, without thumbnails; `files` runs parallel to it.
    QList<ScreenshotItem> items;
    std::vector<Thumbnailer::Source> files;
    int limit = Preferences::kMaxScreenshotsDefault;
};

namespace {

bool isVideoSuffix(const QString& lowerSuffix) {
    return lowerSuffix == QLatin1String("mp4") || lowerSuffix == QLatin1String("mov");
}

bool isCaptureSuffix(const QString& lowerSuffix) {
    return lowerSuffix == QLatin1String("png") || isVideoSuffix(lowerSuffix);
}

QString normalizedPath(const QFileInfo& info) {
    return QDir::cleanPath(info.absoluteFilePath());
}

// The birth time where the file system records one, else the modification
// time; invalid when the file cannot be read at all.
QDateTime creationDate(const QFileInfo& info) {
    const QDateTime birth = info.birthTime();
    return birth.isValid() ? birth : info.lastModified();
}

// A listed file; its thumbnail is filled in after sorting and limiting.
struct FoundFile {
    ScreenshotItem item;
    qint64 size = 0;
};

// The folder's capture files in listing order. Hidden files, folders and
// special files (pipes, sockets, dangling links) are left out; a folder that
// cannot be listed gives nothing.
void collectCaptureFiles(const QString& folder, bool onlyOwnCaptures,
                         const std::unordered_set<quint64>& ownInodes,
                         std::vector<FoundFile>& found) {
    const QFileInfoList entries = QDir(folder).entryInfoList(QDir::Files, QDir::Unsorted);
    for (const QFileInfo& info : entries) {
        const QString lowerSuffix = info.suffix().toLower();
        if (!isCaptureSuffix(lowerSuffix)) {
            continue;
        }
        const QString path = normalizedPath(info);
        if (onlyOwnCaptures) {
            const std::optional<quint64> inode = CaptureRegistry::inodeOf(path);
            if (!inode || !ownInodes.contains(*inode)) {
                continue;
            }
        }
        QDateTime date = creationDate(info);
        if (!date.isValid()) {
            date = ScreenshotItem::distantPast();
        }
        const QDateTime modified = info.lastModified();
        found.push_back(
            {ScreenshotItem(path, date, modified.isValid() ? modified : date), info.size()});
    }
}

}  // namespace

ScreenshotStore& ScreenshotStore::shared() {
    static auto* instance = new ScreenshotStore(
        QStandardPaths::writableLocation(QStandardPaths::DesktopLocation),
        QStandardPaths::writableLocation(QStandardPaths::PicturesLocation) +
            QStringLiteral("/Screenshots"),
        CaptureRegistry::shared(), UserSettings::shared(), Preferences::shared());
    return *instance;
}

ScreenshotStore::ScreenshotStore(const QString& desktopFolder, const QString& screenshotsFolder,
                                 CaptureRegistry& registry, UserSettings& settings,
                                 Preferences& preferences,
                                 std::shared_ptr<const VideoFrameReader> videoFrameReader,
                                 QObject* parent)
    : QObject(parent),
      scanFolders_{desktopFolder, screenshotsFolder},
      registry_(registry),
      settings_(settings),
      preferences_(preferences),
      thumbnailer_(std::move(videoFrameReader)) {
    pool_.setMaxThreadCount(std::max(1, QThread::idealThreadCount()));
    // The first scan is published from the event loop: the shell's launch
    // clean-up, called right after construction, finds an empty list.
    startScan();
    startWatching();
    connect(&settings_, &UserSettings::showOnlyQuillixItemsChanged, this,
            &ScreenshotStore::refresh);
    connect(&preferences_, &Preferences::valueChanged, this, [this](const QString& key) {
        if (key == QLatin1String(Preferences::Key::maxScreenshots)) {
            refresh();
        }
    });
    connect(&thumbnailer_, &Thumbnailer::thumbnailsDecoded, this, &ScreenshotStore::showThumbnails);
    connect(&thumbnailer_, &Thumbnailer::fillingFinished, this, &ScreenshotStore::emitIfIdle);
}

ScreenshotStore::~ScreenshotStore() {
    stopWatching();
    // Jobs post their results to this object; let them finish while it is
    // still whole. Results not yet delivered are dropped with the object.
    // The thumbnailer ends its own filling as it is destroyed.
    pool_.waitForDone();
}

void ScreenshotStore::stopWork() {
    stopWatching();
    pool_.clear();
    pool_.waitForDone();
    thumbnailer_.stop();
}

QStringList ScreenshotStore::watchedFolders() const {
    return watcher_ != nullptr ? watcher_->directories() : QStringList();
}

void ScreenshotStore::refresh() {
    if (QThread::currentThread() != thread()) {
        ++requestsInTransit_;
        QMetaObject::invokeMethod(this, &ScreenshotStore::handleRequestInTransit,
                                  Qt::QueuedConnection);
        return;
    }
    if (scanRunning_) {
        // Every later request folds into the one waiting scan, which starts
        // after the running one is published and therefore sees the newest
        // state of the folders.
        scanWaiting_ = true;
        return;
    }
    startScan();
}

void ScreenshotStore::handleRequestInTransit() {
    --requestsInTransit_;
    refresh();
}

void ScreenshotStore::startScan() {
    scanRunning_ = true;
    ScanRequest request;
    request.folders = scanFolders_;
    request.onlyOwnCaptures = settings_.showOnlyQuillixItems();
    if (request.onlyOwnCaptures) {
        request.ownInodes = registry_.inodes();
    }
    request.limit = preferences_.maxScreenshots();
    pool_.start([this, request = std::move(request)] {
        const ScanResult result = scan(request);
        QMetaObject::invokeMethod(
            this, [this, result] { publish(result); }, Qt::QueuedConnection);
    });
}

ScreenshotStore::ScanResult ScreenshotStore::scan(const ScanRequest& request) {
    std::vector<FoundFile> found;
    for (const QString& folder : request.folders) {
        collectCaptureFiles(folder, request.onlyOwnCaptures, request.ownInodes, found);
    }
    // Stable: equal dates keep folder order (Desktop first) and listing order.
    std::stable_sort(found.begin(), found.end(), [](const FoundFile& a, const FoundFile& b) {
        return a.item.date() > b.item.date();
    });
    if (found.size() > size_t(std::max(0, request.limit))) {
        found.resize(size_t(std::max(0, request.limit)));
    }

    ScanResult result;
    result.limit = request.limit;
    result.items.reserve(qsizetype(found.size()));
    result.files.reserve(found.size());
    for (const FoundFile& file : found) {
        result.items.append(file.item);
        result.files.push_back({file.item.id(), file.item.path(), file.size});
    }
    return result;
}

void ScreenshotStore::publish(const ScanResult& result) {
    screenshots_ = result.items;
    // Cached thumbnails are shown at once; the missing ones follow.
    thumbnailer_.fill(screenshots_, result.files);
    ++publishedScanCount_;
    scanRunning_ = false;
    if (scanWaiting_) {
        scanWaiting_ = false;
        startScan();
    }
    Q_EMIT screenshotsChanged();
    Q_EMIT scanPublished();
    // A scan never yields more than the limit; this guards later insertions.
    if (screenshots_.size() > result.limit) {
        pruneBeyond(result.limit);
    }
    emitIfIdle();
}

// Hands thumbnails of the published list to its items; the list itself is
// unchanged.
void ScreenshotStore::showThumbnails(const QHash<QString, QImage>& thumbnailsById) {
    QStringList changedIds;
    for (ScreenshotItem& item : screenshots_) {
        const auto thumbnail = thumbnailsById.constFind(item.id());
        if (thumbnail != thumbnailsById.constEnd()) {
            item.setThumbnail(*thumbnail);
            changedIds.append(item.id());
        }
    }
    if (!changedIds.isEmpty()) {
        Q_EMIT thumbnailsChanged(changedIds);
    }
}

void ScreenshotStore::startWatching() {
    QStringList existingFolders;
    for (const QString& folder : scanFolders_) {
        if (QFileInfo(folder).isDir()) {
            existingFolders.append(folder);
        }
    }
    if (existingFolders.isEmpty()) {
        return;
    }
    watcher_ = new QFileSystemWatcher(this);
    watcher_->addPaths(existingFolders);
    connect(watcher_, &QFileSystemWatcher::directoryChanged, this, &ScreenshotStore::refresh);
}

void ScreenshotStore::stopWatching() {
    if (watcher_ == nullptr) {
        return;
    }
    watcher_->disconnect(this);
    watcher_->removePaths(watcher_->directories());
    watcher_->deleteLater();
    watcher_ = nullptr;
}

void ScreenshotStore::insertNewCapture(const QString& path) {
    registry_.record(path);
    ++fileOperationsRunning_;
    pool_.start([this, path] {
        const QFileInfo info(path);
        QDateTime date = creationDate(info);
        if (!date.isValid()) {
            date = QDateTime::currentDateTimeUtc();
        }
        const QDateTime modified = info.lastModified();
        const ScreenshotItem item(normalizedPath(info), date, modified.isValid() ? modified : date,
                                  thumbnailer_.decode(path));
        QMetaObject::invokeMethod(
            this,
            [this, item, fileSize = info.size()] {
                insertAtFront(item, fileSize);
                finishFileOperation();
            },
            Qt::QueuedConnection);
    });
}

void ScreenshotStore::insertAtFront(const ScreenshotItem& item, qint64 fileSize) {
    // A rescan may already have listed the file; it must not appear twice.
    screenshots_.removeIf([&](const ScreenshotItem& listed) { return listed.id() == item.id(); });
    screenshots_.prepend(item);
    thumbnailer_.remember({item.id(), item.path(), fileSize}, item.thumbnail());
    Q_EMIT screenshotsChanged();
}

void ScreenshotStore::moveToTrash(const ScreenshotItem& item) {
    // Copies: `item` may be an element of the list edited below.
    const QString id = item.id();  // NOLINT(performance-unnecessary-copy-initialization)
    trashFiles({item.path()});
    removeWhere([&id](const ScreenshotItem& listed) { return listed.id() == id; });
}

void ScreenshotStore::removeFromList(const ScreenshotItem& item) {
    // A copy: `item` may be an element of the list edited below.
    const QString id = item.id();  // NOLINT(performance-unnecessary-copy-initialization)
    removeWhere([&id](const ScreenshotItem& listed) { return listed.id() == id; });
}

QFuture<CaptureRenameResult> ScreenshotStore::renameFile(const QString& path,
                                                         const QString& newPath) {
    ++fileOperationsRunning_;
    return QtConcurrent::run(&pool_, [path, newPath] { return moveCaptureFile(path, newPath); })
        .then(this, [this, path](const CaptureRenameResult& result) {
            if (result.succeeded()) {
                Q_EMIT fileRenamed(path, result.newPath);
                refresh();
            }
            finishFileOperation();
            return result;
        });
}

void ScreenshotStore::autoClear(int days, const QDateTime& now) {
    if (days < 1) {
        return;
    }
    const QDateTime cutoff = now.addSecs(-qint64(days) * 86400);
    QStringList oldFiles;
    for (const ScreenshotItem& item : std::as_const(screenshots_)) {
        if (item.date() < cutoff) {
            oldFiles.append(item.path());
        }
    }
    if (oldFiles.isEmpty()) {
        return;
    }
    trashFiles(oldFiles);
    removeWhere([&cutoff](const ScreenshotItem& listed) { return listed.date() < cutoff; });
}

void ScreenshotStore::pruneBeyond(int limit) {
    limit = std::max(0, limit);
    if (screenshots_.size() <= limit) {
        return;
    }
    QStringList surplus;
    for (qsizetype i = limit; i < screenshots_.size(); ++i) {
        surplus.append(screenshots_.at(i).path());
    }
    trashFiles(surplus);
    trimTo(limit);
}

void ScreenshotStore::trimTo(int count) {
    count = std::max(0, count);
    if (screenshots_.size() <= count) {
        return;
    }
    screenshots_.resize(count);
    Q_EMIT screenshotsChanged();
}

void ScreenshotStore::removeWhere(const std::function<bool(const ScreenshotItem&)>& shouldRemove) {
    if (screenshots_.removeIf(shouldRemove) > 0) {
        Q_EMIT screenshotsChanged();
    }
}

// Moves run in the background in the order given; failures are ignored (the
// next rescan lists a file that stayed).
void ScreenshotStore::trashFiles(const QStringList& paths) {
    ++fileOperationsRunning_;
    pool_.start([this, paths] {
        QStringList trashed;
        for (const QString& path : paths) {
            if (QFile::moveToTrash(path)) {
                trashed.append(path);
            }
        }
        QMetaObject::invokeMethod(
            this,
            [this, trashed] {
                if (!trashed.isEmpty()) {
                    Q_EMIT filesTrashed(trashed);
                }
                finishFileOperation();
            },
            Qt::QueuedConnection);
    });
}

void ScreenshotStore::finishFileOperation() {
    --fileOperationsRunning_;
    emitIfIdle();
}

bool ScreenshotStore::isIdle() const {
    return !scanRunning_ && !scanWaiting_ && !thumbnailer_.isFilling() &&
           fileOperationsRunning_ == 0 && requestsInTransit_ == 0;
}

void ScreenshotStore::emitIfIdle() {
    if (isIdle()) {
        Q_EMIT becameIdle();
    }
}

bool ScreenshotStore::waitForIdle(int timeoutMs) {
    const QDeadlineTimer deadline(timeoutMs);
    // Work can restart between the idle signal and the loop's exit (a folder
    // event handled in the same pass), so check again after every wake-up.
    while (!isIdle() && !deadline.hasExpired()) {
        QEventLoop loop;
        connect(this, &ScreenshotStore::becameIdle, &loop, &QEventLoop::quit);
        QTimer::singleShot(std::max<qint64>(0, deadline.remainingTime()), &loop, &QEventLoop::quit);
        loop.exec();
    }
    return isIdle();
}
