// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "library/thumbnailer.h"

#include <QElapsedTimer>
#include <QImageReader>
#include <QMutex>
#include <QMutexLocker>
#include <QThread>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <utility>

#include "library/image_allocation_limit.h"
#include "platform/ffmpeg/ffmpeg_video_frame_reader.h"

struct Thumbnailer::Decoded {
    QString id;
    CachedThumbnail thumbnail;
};

// One list's missing thumbnails, decoded by a few workers that each take the
// next file until none is left. Decoded thumbnails are handed to the GUI
// thread in batches.
struct Thumbnailer::Filling {
    int generation = 0;
    std::vector<Source> files;
    // Set on the GUI thread when a newer list is filled: workers take no
    // further file.
    std::atomic<bool> superseded = false;

    QMutex mutex;  // Guards everything below.
    size_t nextFile = 0;
    size_t decodedCount = 0;
    // Workers inside runFillingWorker now. Counted as they arrive, not as
    // they are queued: the thread pool has been seen to drop a queued job
    // under heavy load, and the filling must still finish without it.
    int activeWorkers = 0;
    bool finishReported = false;
    std::vector<Decoded> batch;
    QElapsedTimer sinceLastBatch;
};

namespace {

// Decoded thumbnails are handed to the GUI thread in batches of this many,
// or of whatever came in during this long, so the gallery fills steadily
// without one update per picture.
constexpr size_t kBatchSize = 16;
constexpr qint64 kBatchIntervalMs = 100;

QSize fittedThumbnailSize(const QSize& size) {
    const int longer = std::max(size.width(), size.height());
    if (longer <= ScreenshotItem::kThumbnailMaxSide) {
        return size;  // Never enlarged.
    }
    const double scale = double(ScreenshotItem::kThumbnailMaxSide) / longer;
    return {std::max(1, int(std::lround(size.width() * scale))),
            std::max(1, int(std::lround(size.height() * scale)))};
}

// Whether Qt's smooth scaling keeps an image of this stored format in its
// palette (one-bit and indexed images, a flat PNG often among them), where
// it can only dither between the palette's colours.
bool scalesWithinPalette(QImage::Format format) {
    return format == QImage::Format_Mono || format == QImage::Format_MonoLSB ||
           format == QImage::Format_Indexed8;
}

// Decodes at reduced size where the format allows it, turned upright by the
// image's orientation tag, always in 32 bits so that every later scaling
// mixes colours.
QImage imageThumbnail(const QString& path) {
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.isValid() && !scalesWithinPalette(reader.imageFormat())) {
        reader.setScaledSize(fittedThumbnailSize(size));
    }
    QImage image = reader.read();
    if (image.isNull()) {
        return {};
    }
    if (image.depth() < 32) {
        image = image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                              : QImage::Format_RGB32);
    }
    const QSize fitted = fittedThumbnailSize(image.size());
    return fitted == image.size()
               ? image
               : image.scaled(fitted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

}  // namespace

Thumbnailer::Thumbnailer(std::shared_ptr<const VideoFrameReader> videoFrameReader, QObject* parent)
    : QObject(parent),
      videoFrameReader_(videoFrameReader ? std::move(videoFrameReader)
                                         : std::make_shared<FfmpegVideoFrameReader>()) {
    // Screenshots of large or several screens exceed Qt's default limit.
    raiseImageAllocationLimit();
    pool_.setMaxThreadCount(std::max(1, QThread::idealThreadCount()));
}

Thumbnailer::~Thumbnailer() {
    supersedeFilling();
    // Workers post their batches to this object; let them finish while it
    // is still whole. Batches not yet delivered are dropped with the object.
    pool_.waitForDone();
}

void Thumbnailer::stop() {
    supersedeFilling();
    pool_.waitForDone();
}

QImage Thumbnailer::decode(const QString& path) const {
    if (ScreenshotItem::isVideoPath(path)) {
        return videoFrameReader_->firstFrame(path, ScreenshotItem::kThumbnailMaxSide);
    }
    return imageThumbnail(path);
}

void Thumbnailer::fill(QList<ScreenshotItem>& items, const std::vector<Source>& sources) {
    std::vector<Source> missing = takeCached(items, sources);
    supersedeFilling();
    if (!missing.empty()) {
        startFilling(std::move(missing));
    }
}

void Thumbnailer::remember(const Source& source, const QImage& thumbnail) {
    cache_.insert(source.id, {source.fileSize, thumbnail});
}

// Returns the sources whose thumbnail is missing. The cache is read here
// rather than when the list was scanned so that thumbnails an earlier filling
// decoded meanwhile are not decoded again.
std::vector<Thumbnailer::Source> Thumbnailer::takeCached(QList<ScreenshotItem>& items,
                                                         const std::vector<Source>& sources) {
    Cache kept;
    std::vector<Source> missing;
    for (qsizetype i = 0; i < items.size(); ++i) {
        const Source& source = sources[size_t(i)];
        const auto cached = cache_.constFind(source.id);
        if (cached != cache_.constEnd() && cached->fileSize == source.fileSize) {
            items[i].setThumbnail(cached->image);
            kept.insert(source.id, *cached);
        } else {
            missing.push_back(source);
        }
    }
    cache_ = std::move(kept);
    return missing;
}

void Thumbnailer::startFilling(std::vector<Source> missing) {
    auto filling = std::make_shared<Filling>();
    filling->generation = generation_;
    filling->files = std::move(missing);
    const size_t workerCount =
        std::min<size_t>(size_t(pool_.maxThreadCount()), filling->files.size());
    filling->sinceLastBatch.start();
    currentFilling_ = filling;
    ++fillsRunning_;
    for (size_t worker = 0; worker < workerCount; ++worker) {
        pool_.start([this, filling] { runFillingWorker(filling); });
    }
}

void Thumbnailer::supersedeFilling() {
    ++generation_;
    if (currentFilling_ != nullptr) {
        currentFilling_->superseded = true;
        currentFilling_.reset();
    }
}

// One worker: decodes files until none is left or the filling is
// superseded, handing over the batch whenever it is due. The last worker to
// stop once nothing is left hands over the rest and reports the filling
// finished, exactly once; a worker arriving after that has nothing to do.
void Thumbnailer::runFillingWorker(const std::shared_ptr<Filling>& filling) {
    QMutexLocker locker(&filling->mutex);
    if (filling->finishReported) {
        return;
    }
    ++filling->activeWorkers;
    while (!filling->superseded && filling->nextFile < filling->files.size()) {
        const Source& file = filling->files[filling->nextFile++];
        locker.unlock();
        // A file deleted or damaged since the listing gives a null
        // thumbnail, which is cached like any failed decode.
        const QImage image = decode(file.path);
        locker.relock();
        filling->batch.push_back({file.id, {file.fileSize, image}});
        ++filling->decodedCount;
        const bool batchDue = filling->batch.size() >= kBatchSize ||
                              filling->sinceLastBatch.elapsed() >= kBatchIntervalMs ||
                              filling->decodedCount == filling->files.size();
        if (batchDue) {
            std::vector<Decoded> batch = std::exchange(filling->batch, {});
            filling->sinceLastBatch.restart();
            locker.unlock();
            handOver(filling->generation, std::move(batch), false);
            locker.relock();
        }
    }
    // Leaving the loop means no file is left to take (or none will be).
    if (--filling->activeWorkers == 0) {
        filling->finishReported = true;
        std::vector<Decoded> rest = std::exchange(filling->batch, {});
        locker.unlock();
        handOver(filling->generation, std::move(rest), true);
    }
}

// Called on a worker thread; the batch is received on the GUI thread.
void Thumbnailer::handOver(int generation, std::vector<Decoded> batch, bool finished) {
    QMetaObject::invokeMethod(
        this,
        [this, generation, batch = std::move(batch), finished] {
            receive(generation, batch, finished);
        },
        Qt::QueuedConnection);
}

void Thumbnailer::receive(int generation, const std::vector<Decoded>& decoded, bool finished) {
    for (const Decoded& thumbnail : decoded) {
        cache_.insert(thumbnail.id, thumbnail.thumbnail);
    }
    // A superseded filling only feeds the cache: the newer list's own
    // filling or cache look-up covers the rest.
    if (generation == generation_ && !decoded.empty()) {
        QHash<QString, QImage> byId;
        for (const Decoded& thumbnail : decoded) {
            byId.insert(thumbnail.id, thumbnail.thumbnail.image);
        }
        Q_EMIT thumbnailsDecoded(byId);
    }
    if (finished) {
        --fillsRunning_;
        Q_EMIT fillingFinished();
    }
}
