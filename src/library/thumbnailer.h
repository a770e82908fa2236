// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QHash>
#include <QImage>
#include <QList>
#include <QObject>
#include <QString>
#include <QThreadPool>
#include <memory>
#include <vector>

#include "library/screenshot_item.h"

class VideoFrameReader;

// The small pictures of the listed capture files: a picture decoded at
// reduced size, a recording's first frame. Thumbnails are cached by item id
// and file size, so a rescan decodes only new or changed files; failed
// decodes are cached too, so a damaged file is not retried on every rescan.
//
// Confined to the GUI thread, except decode(). A list's missing thumbnails
// are decoded in parallel on the thumbnailer's own threads and handed over in
// batches (thumbnailsDecoded). Filling a newer list ends the filling of the
// one before: its workers take no further file, and what they already
// decoded only feeds the cache, since the newer list may hold another version
// of a file under the same id.
class Thumbnailer : public QObject {
    Q_OBJECT

public:
    // One version of a listed file: the item's id and the file's size when
    // it was listed.
    struct Source {
        QString id;
        QString path;
        qint64 fileSize = 0;
    };

    // A null `videoFrameReader` means FFmpeg.
    explicit Thumbnailer(std::shared_ptr<const VideoFrameReader> videoFrameReader = nullptr,
                         QObject* parent = nullptr);
    ~Thumbnailer() override;

    Thumbnailer(const Thumbnailer&) = delete;
    Thumbnailer& operator=(const Thumbnailer&) = delete;

    // The thumbnail of the file at `path`, at most
    // ScreenshotItem::kThumbnailMaxSide pixels on the longer side; null when
    // the file cannot be decoded. Any thread.
    QImage decode(const QString& path) const;

    // Gives `items` the cached thumbnails of their file versions (`sources`
    // runs parallel to `items`), keeps only those in the cache, and starts
    // decoding the missing ones, in the order given. Supersedes the filling
    // of the list before.
    void fill(QList<ScreenshotItem>& items, const std::vector<Source>& sources);

    // Keeps a thumbnail decoded elsewhere for this file version.
    void remember(const Source& source, const QImage& thumbnail);

    // Whether a filling, superseded ones included, still has workers.
    bool isFilling() const { return fillsRunning_ > 0; }

    // Ends every filling and waits for its workers: nothing decodes once the
    // program is leaving (FFmpeg's own threads must not outlive its state).
    void stop();

Q_SIGNALS:
    // Thumbnails of the latest filled list, by item id; null where decoding
    // failed.
    void thumbnailsDecoded(const QHash<QString, QImage>& thumbnailsById);
    // A filling's workers have all ended (superseded fillings included).
    void fillingFinished();

private:
    struct CachedThumbnail {
        qint64 fileSize = -1;
        QImage image;
    };
    using Cache = QHash<QString, CachedThumbnail>;
    struct Decoded;
    struct Filling;

    std::vector<Source> takeCached(QList<ScreenshotItem>& items,
                                   const std::vector<Source>& sources);
    void startFilling(std::vector<Source> missing);
    void supersedeFilling();
    void runFillingWorker(const std::shared_ptr<Filling>& filling);
    void handOver(int generation, std::vector<Decoded> batch, bool finished);
    void receive(int generation, const std::vector<Decoded>& decoded, bool finished);

    std::shared_ptr<const VideoFrameReader> videoFrameReader_;
    Cache cache_;
    // The filling of the latest list; earlier ones are superseded.
    std::shared_ptr<Filling> currentFilling_;
    int generation_ = 0;
    // Fillings (superseded ones included) whose workers have not all ended.
    int fillsRunning_ = 0;

    // Declared last so that it is destroyed first; the destructor also waits
    // for it, so no worker outlives the members it reads. A pool of its own,
    // so that a filling, which keeps every thread busy for seconds, never
    // holds back the store's scans or file moves.
    QThreadPool pool_;
};
