// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// Measures the shelves window over a shelf of 500 real PNG screenshots.
//
// (a) Opening the shelf: the time until the grid's first frame with all 500
//     tiles (placeholders) has been painted, and until every thumbnail has
//     been decoded and shown.
// (b) Dropping 100 files from the Desktop onto the shelf: the time until
//     all have been moved in.
//
// Throughout, a 1 ms timer on the GUI thread records the longest gap between
// its ticks: the longest time the GUI thread was busy.
//
// Figures only; nothing here passes or fails on time.
//
//   scripts/with-desktop build/bin/bench_shelf_window

#include <QApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QElapsedTimer>
#include <QListWidget>
#include <QMimeData>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>
#include <QtConcurrent/QtConcurrentMap>
#include <algorithm>
#include <cstdio>

#include "bench_support.h"
#include "library/capture_registry.h"
#include "library/screenshot_store.h"
#include "shelves/shelf_detail_view.h"
#include "shelves/shelf_window.h"
#include "storage/preferences.h"
#include "storage/screenshot_metadata_store.h"
#include "storage/shelf_store.h"
#include "storage/user_settings.h"
#include "widget_watch.h"

namespace {

constexpr int kShelfTimeoutMs = 60000;

constexpr int kShelfFiles = 500;
constexpr int kDroppedFiles = 100;

// The longest gap between ticks of a 1 ms timer: how long the GUI thread
// was kept from its event loop.
class StallWatch : public QObject {
public:
    StallWatch() {
        timer_.setInterval(1);
        connect(&timer_, &QTimer::timeout, this, [this] {
            longestMs_ = std::max(longestMs_, clock_.nsecsElapsed() / 1e6);
            clock_.restart();
        });
    }
    void start() {
        longestMs_ = 0;
        clock_.start();
        timer_.start();
    }
    double stop() {
        timer_.stop();
        return longestMs_;
    }

private:
    QTimer timer_;
    QElapsedTimer clock_;
    double longestMs_ = 0;
};

void writePngs(const QString& folder, const QString& prefix, int count) {
    QList<int> seeds;
    for (int i = 0; i < count; ++i) {
        seeds.append(i);
    }
    QtConcurrent::blockingMap(seeds, [&](int seed) {
        screenshotLikeImage(seed, QSize(960, 540))
            .save(QStringLiteral("%1/%2_%3.png")
                      .arg(folder, prefix)
                      .arg(seed, 3, 10, QLatin1Char('0')),
                  "PNG");
    });
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QTemporaryDir home;
    const QString desktop = home.filePath(QStringLiteral("Desktop"));
    const QString dataDir = home.filePath(QStringLiteral("data/Quillix"));
    const QString legacyDir = home.filePath(QStringLiteral("legacy"));
    QDir().mkpath(desktop);

    CaptureRegistry registry(dataDir, legacyDir);
    UserSettings settings(dataDir, legacyDir);
    settings.setShowOnlyQuillixItems(false);
    Preferences preferences(home.filePath(QStringLiteral("config/Quillix.conf")));
    ScreenshotMetadataStore metaStore(dataDir);
    ShelfStore shelves(dataDir, legacyDir, settings, desktop);
    if (shelves.createShelf(QStringLiteral("Bench"))) {
        std::printf("could not create the shelf\n");
        return 1;
    }
    const ShelfItem shelf = shelves.shelves().constFirst();
    writePngs(shelf.folderPath, QStringLiteral("Shelf"), kShelfFiles);
    writePngs(desktop, QStringLiteral("Dropped"), kDroppedFiles);
    ScreenshotStore library(desktop, home.filePath(QStringLiteral("Pictures/Screenshots")),
                            registry, settings, preferences);
    library.waitForIdle(60000);
    std::printf("setup: %d PNGs of 960x540 in the shelf, %d on the Desktop\n", kShelfFiles,
                int(library.screenshots().size()));

    ShelfWindow window({shelves, settings, preferences, metaStore, library}, {});
    window.present();
    spinUntil([&] { return window.isVisible(); }, kShelfTimeoutMs);
    ShelfDetailView& detail = *window.detailView();
    auto* paints = new PaintWatch(detail.grid()->viewport());
    StallWatch stalls;

    // (a) Opening.
    int thumbnails = 0;
    QObject::connect(&detail, &ShelfDetailView::thumbnailShown, [&] { ++thumbnails; });
    QElapsedTimer clock;
    stalls.start();
    clock.start();
    window.openShelf(shelf);
    spinUntil([&] { return detail.grid()->count() == kShelfFiles && paints->paints > 0; },
              kShelfTimeoutMs);
    const double firstFrameMs = clock.nsecsElapsed() / 1e6;
    spinUntil([&] { return thumbnails >= kShelfFiles; }, kShelfTimeoutMs);
    const double allThumbnailsMs = clock.nsecsElapsed() / 1e6;
    const double openStallMs = stalls.stop();
    std::printf(
        "open: first frame with %d tiles %.1f ms, all thumbnails %.1f ms (%d shown), "
        "longest GUI stall %.1f ms\n",
        detail.grid()->count(), firstFrameMs, allThumbnailsMs, thumbnails, openStallMs);

    // (b) Dropping.
    QMimeData mime;
    QList<QUrl> urls;
    for (int i = 0; i < kDroppedFiles; ++i) {
        urls.append(QUrl::fromLocalFile(
            QStringLiteral("%1/Dropped_%2.png").arg(desktop).arg(i, 3, 10, QLatin1Char('0'))));
    }
    mime.setUrls(urls);
    int moved = 0;
    int finished = 0;
    QObject::connect(&detail, &ShelfDetailView::dropFinished, [&](const QString&, bool ok) {
        ++finished;
        moved += ok ? 1 : 0;
    });
    stalls.start();
    clock.restart();
    QDragEnterEvent enter(QPoint(50, 200), Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&detail, &enter);
    QDropEvent drop(QPointF(50, 200), Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&detail, &drop);
    spinUntil([&] { return finished >= kDroppedFiles && thumbnails >= kShelfFiles + moved; },
              kShelfTimeoutMs);
    const double dropMs = clock.nsecsElapsed() / 1e6;
    const double dropStallMs = stalls.stop();
    const int inFolder = static_cast<int>(ShelfStore::files(shelf).size());
    std::printf(
        "drop: %d of %d moved in %.1f ms (thumbnails included), %d files in the "
        "shelf folder, longest GUI stall %.1f ms\n",
        moved, kDroppedFiles, dropMs, inFolder, dropStallMs);
    return 0;
}
