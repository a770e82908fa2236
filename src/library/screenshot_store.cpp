#include "library/screenshot_store.h"

#include <sys/stat.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QImageReader>
#include <QMutex>
#include <QMutexLocker>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>
#include <QtConcurrent/QtConcurrentRun>
#include <algorithm>
#include <cmath>
#include <optional>
#include <unordered_set>
#include <utility>
#include <vector>

#include "library/capture_registry.h"
#include "library/image_allocation_limit.h"
#include "platform/ffmpeg/ffmpeg_video_frame_reader.h"
#include "storage/user_defaults.h"
#include "storage/user_settings.h"

struct ScreenshotStore::ScanRequest {
    QStringList folders;
    bool onlyOwnCaptures = true;
    // A copy taken on the GUI thread: the registry itself is not thread-safe.
    std::unordered_set<quint64> ownInodes;
    int limit = UserDefaults::kMaxScreenshotsDefault;
};

// A listed file whose thumbnail is not (or not yet) in the cache.
struct ScreenshotStore::PendingThumbnail {
    QString id;
    QString path;
    QString lowerSuffix;
    qint64 fileSize = 0;
};

struct ScreenshotStore::ScanResult {
    // Newest first, without thumbnails; `files` runs parallel to it.
    QList<ScreenshotItem> items;
    std::vector<PendingThumbnail> files;
    int limit = UserDefaults::kMaxScreenshotsDefault;
};

struct ScreenshotStore::DecodedThumbnail {
    QString id;
    CachedThumbnail thumbnail;
};

// One scan's missing thumbnails, decoded by a few workers that each take the
// next file until none is left. Decoded thumbnails are handed to the GUI
// thread in batches.
struct ScreenshotStore::ThumbnailFill {
    int generation = 0;
    std::vector<PendingThumbnail> files;
    std::shared_ptr<const VideoFrameReader> videoFrameReader;
    // Set on the GUI thread when a newer scan is published: workers take no
    // further file.
    std::atomic<bool> superseded = false;

    QMutex mutex;  // Guards everything below.
    size_t nextFile = 0;
    size_t decodedCount = 0;
    // Workers inside runThumbnailFillWorker now. Counted as they arrive, not
    // as they are queued: the thread pool has been seen to drop a queued job
    // under heavy load, and the filling must still finish without it.
    int activeWorkers = 0;
    bool finishReported = false;
    std::vector<DecodedThumbnail> batch;
    QElapsedTimer sinceLastBatch;
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

QSize fittedThumbnailSize(const QSize& size) {
    const int longer = std::max(size.width(), size.height());
    if (longer <= ScreenshotItem::kThumbnailMaxSide) {
        return size;  // Never enlarged.
    }
    const double scale = double(ScreenshotItem::kThumbnailMaxSide) / longer;
    return {std::max(1, int(std::lround(size.width() * scale))),
            std::max(1, int(std::lround(size.height() * scale)))};
}

// Decodes at reduced size where the format allows it, turned upright by the
// image's orientation tag.
QImage imageThumbnail(const QString& path) {
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.isValid()) {
        reader.setScaledSize(fittedThumbnailSize(size));
    }
    QImage image = reader.read();
    if (image.isNull()) {
        return {};
    }
    const QSize fitted = fittedThumbnailSize(image.size());
    return fitted == image.size()
               ? image
               : image.scaled(fitted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QImage thumbnailFor(const QString& path, const QString& lowerSuffix,
                    const VideoFrameReader& videoFrameReader) {
    if (isVideoSuffix(lowerSuffix)) {
        return videoFrameReader.firstFrame(path, ScreenshotItem::kThumbnailMaxSide);
    }
    return imageThumbnail(path);
}

std::optional<quint64> inodeOf(const QString& path) {
    struct stat status {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0) {
        return std::nullopt;
    }
    return static_cast<quint64>(status.st_ino);
}

// A listed file; its thumbnail is filled in after sorting and limiting.
struct FoundFile {
    ScreenshotItem item;
    QString lowerSuffix;
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
            const std::optional<quint64> inode = inodeOf(path);
            if (!inode || !ownInodes.contains(*inode)) {
                continue;
            }
        }
        QDateTime date = creationDate(info);
        if (!date.isValid()) {
            date = ScreenshotItem::distantPast();
        }
        const QDateTime modified = info.lastModified();
        found.push_back({ScreenshotItem(path, date, modified.isValid() ? modified : date),
                         lowerSuffix, info.size()});
    }
}

// Decoded thumbnails are handed to the GUI thread in batches of this many,
// or of whatever came in during this long, so the gallery fills steadily
// without one update per picture.
constexpr size_t kThumbnailBatchSize = 16;
constexpr qint64 kThumbnailBatchIntervalMs = 100;

}  // namespace

ScreenshotStore& ScreenshotStore::shared() {
    static ScreenshotStore* instance = new ScreenshotStore(
        QStandardPaths::writableLocation(QStandardPaths::DesktopLocation),
        QStandardPaths::writableLocation(QStandardPaths::PicturesLocation) +
            QStringLiteral("/Screenshots"),
        CaptureRegistry::shared(), UserSettings::shared(), UserDefaults::shared());
    return *instance;
}

ScreenshotStore::ScreenshotStore(const QString& desktopFolder, const QString& screenshotsFolder,
                                 CaptureRegistry& registry, UserSettings& settings,
                                 UserDefaults& defaults,
                                 std::shared_ptr<const VideoFrameReader> videoFrameReader,
                                 QObject* parent)
    : QObject(parent),
      scanFolders_{desktopFolder, screenshotsFolder},
      registry_(registry),
      settings_(settings),
      defaults_(defaults),
      videoFrameReader_(videoFrameReader ? std::move(videoFrameReader)
                                         : std::make_shared<FfmpegVideoFrameReader>()) {
    raiseImageAllocationLimit();
    pool_.setMaxThreadCount(std::max(1, QThread::idealThreadCount()));
    thumbnailPool_.setMaxThreadCount(std::max(1, QThread::idealThreadCount()));
    // The first scan is published from the event loop: the shell's launch
    // clean-up, called right after construction, finds an empty list.
    startScan();
    startWatching();
    connect(&settings_, &UserSettings::showOnlyQuillixItemsChanged, this,
            &ScreenshotStore::refresh);
    connect(&defaults_, &UserDefaults::valueChanged, this, [this](const QString& key) {
        if (key == QLatin1String(UserDefaults::Key::maxScreenshots)) {
            refresh();
        }
    });
}

ScreenshotStore::~ScreenshotStore() {
    stopWatching();
    supersedeThumbnailFill();
    // Jobs post their results to this object; let them finish while it is
    // still whole. Results not yet delivered are dropped with the object.
    thumbnailPool_.waitForDone();
    pool_.waitForDone();
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
    request.limit = defaults_.maxScreenshots();
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
        result.files.push_back({file.item.id(), file.item.path(), file.lowerSuffix, file.size});
    }
    return result;
}

void ScreenshotStore::publish(const ScanResult& result) {
    screenshots_ = result.items;
    std::vector<PendingThumbnail> missing = takeCachedThumbnails(result);
    ++publishedScanCount_;
    scanRunning_ = false;
    supersedeThumbnailFill();
    if (!missing.empty()) {
        startThumbnailFill(std::move(missing));
    }
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

// Gives the just-published items the thumbnails the cache holds for their
// file version, keeps only those in the cache, and returns the files whose
// thumbnail is still missing, newest first. The cache is read here rather
// than when the scan started so that thumbnails an earlier filling decoded
// meanwhile are not decoded again.
std::vector<ScreenshotStore::PendingThumbnail> ScreenshotStore::takeCachedThumbnails(
    const ScanResult& result) {
    ThumbnailCache kept;
    std::vector<PendingThumbnail> missing;
    for (qsizetype i = 0; i < screenshots_.size(); ++i) {
        const PendingThumbnail& file = result.files[size_t(i)];
        const auto cached = thumbnailCache_.constFind(file.id);
        if (cached != thumbnailCache_.constEnd() && cached->fileSize == file.fileSize) {
            screenshots_[i].setThumbnail(cached->image);
            kept.insert(file.id, *cached);
        } else {
            missing.push_back(file);
        }
    }
    thumbnailCache_ = std::move(kept);
    return missing;
}

void ScreenshotStore::startThumbnailFill(std::vector<PendingThumbnail> pending) {
    auto fill = std::make_shared<ThumbnailFill>();
    fill->generation = fillGeneration_;
    fill->files = std::move(pending);
    fill->videoFrameReader = videoFrameReader_;
    const size_t workerCount =
        std::min<size_t>(size_t(thumbnailPool_.maxThreadCount()), fill->files.size());
    fill->sinceLastBatch.start();
    currentFill_ = fill;
    ++fillsRunning_;
    for (size_t worker = 0; worker < workerCount; ++worker) {
        thumbnailPool_.start([this, fill] { runThumbnailFillWorker(fill); });
    }
}

void ScreenshotStore::supersedeThumbnailFill() {
    ++fillGeneration_;
    if (currentFill_ != nullptr) {
        currentFill_->superseded = true;
        currentFill_.reset();
    }
}

// One worker: decodes files until none is left or the filling is
// superseded, handing over the batch whenever it is due. The last worker to
// stop once nothing is left hands over the rest and reports the filling
// finished, exactly once; a worker arriving after that has nothing to do.
void ScreenshotStore::runThumbnailFillWorker(const std::shared_ptr<ThumbnailFill>& fill) {
    const auto handOver = [this, generation = fill->generation](std::vector<DecodedThumbnail> batch,
                                                                bool finished) {
        QMetaObject::invokeMethod(
            this,
            [this, generation, batch = std::move(batch), finished] {
                receiveThumbnails(generation, batch, finished);
            },
            Qt::QueuedConnection);
    };

    QMutexLocker locker(&fill->mutex);
    if (fill->finishReported) {
        return;
    }
    ++fill->activeWorkers;
    while (!fill->superseded && fill->nextFile < fill->files.size()) {
        const PendingThumbnail& file = fill->files[fill->nextFile++];
        locker.unlock();
        // A file deleted or damaged since the listing gives a null
        // thumbnail, which is cached like any failed decode.
        const QImage image = thumbnailFor(file.path, file.lowerSuffix, *fill->videoFrameReader);
        locker.relock();
        fill->batch.push_back({file.id, {file.fileSize, image}});
        ++fill->decodedCount;
        const bool batchDue = fill->batch.size() >= kThumbnailBatchSize ||
                              fill->sinceLastBatch.elapsed() >= kThumbnailBatchIntervalMs ||
                              fill->decodedCount == fill->files.size();
        if (batchDue) {
            std::vector<DecodedThumbnail> batch = std::exchange(fill->batch, {});
            fill->sinceLastBatch.restart();
            locker.unlock();
            handOver(std::move(batch), false);
            locker.relock();
        }
    }
    // Leaving the loop means no file is left to take (or none will be).
    if (--fill->activeWorkers == 0) {
        fill->finishReported = true;
        std::vector<DecodedThumbnail> rest = std::exchange(fill->batch, {});
        locker.unlock();
        handOver(std::move(rest), true);
    }
}

void ScreenshotStore::receiveThumbnails(int fillGeneration,
                                        const std::vector<DecodedThumbnail>& decoded,
                                        bool fillFinished) {
    for (const DecodedThumbnail& thumbnail : decoded) {
        thumbnailCache_.insert(thumbnail.id, thumbnail.thumbnail);
    }
    // A superseded filling only feeds the cache: the newer list may hold
    // another version of a file under the same id, and its own filling or
    // cache look-up covers the rest.
    if (fillGeneration == fillGeneration_ && !decoded.empty()) {
        QHash<QString, const QImage*> byId;
        for (const DecodedThumbnail& thumbnail : decoded) {
            byId.insert(thumbnail.id, &thumbnail.thumbnail.image);
        }
        QStringList changedIds;
        for (ScreenshotItem& item : screenshots_) {
            if (const QImage* image = byId.value(item.id())) {
                item.setThumbnail(*image);
                changedIds.append(item.id());
            }
        }
        if (!changedIds.isEmpty()) {
            Q_EMIT thumbnailsChanged(changedIds);
        }
    }
    if (fillFinished) {
        --fillsRunning_;
        emitIfIdle();
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
    pool_.start([this, path, videoFrameReader = videoFrameReader_] {
        const QFileInfo info(path);
        QDateTime date = creationDate(info);
        if (!date.isValid()) {
            date = QDateTime::currentDateTimeUtc();
        }
        const QDateTime modified = info.lastModified();
        const QImage thumbnail = thumbnailFor(path, info.suffix().toLower(), *videoFrameReader);
        const ScreenshotItem item(normalizedPath(info), date, modified.isValid() ? modified : date,
                                  thumbnail);
        const CachedThumbnail cached{info.size(), thumbnail};
        QMetaObject::invokeMethod(
            this,
            [this, item, cached] {
                insertAtFront(item, cached);
                finishFileOperation();
            },
            Qt::QueuedConnection);
    });
}

void ScreenshotStore::insertAtFront(const ScreenshotItem& item, const CachedThumbnail& thumbnail) {
    // A rescan may already have listed the file; it must not appear twice.
    screenshots_.removeIf([&](const ScreenshotItem& listed) { return listed.id() == item.id(); });
    screenshots_.prepend(item);
    thumbnailCache_.insert(item.id(), thumbnail);
    Q_EMIT screenshotsChanged();
}

void ScreenshotStore::moveToTrash(const ScreenshotItem& item) {
    // Copies: `item` may be an element of the list edited below.
    const QString id = item.id();
    trashFiles({item.path()});
    removeWhere([&id](const ScreenshotItem& listed) { return listed.id() == id; });
}

void ScreenshotStore::removeFromList(const ScreenshotItem& item) {
    const QString id = item.id();
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
    return !scanRunning_ && !scanWaiting_ && fillsRunning_ == 0 && fileOperationsRunning_ == 0 &&
           requestsInTransit_ == 0;
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
