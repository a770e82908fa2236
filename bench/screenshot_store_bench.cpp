// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// Measures the screenshot library on a full gallery: 200 own 1920 × 1080
// screenshots on the Desktop. Prints how long a cold scan (no thumbnails
// cached) takes until its list is published and until every thumbnail is,
// the time of a warm rescan (nothing changed), and what a storm of folder
// events costs. Figures only; nothing here passes or fails on time.

#include <sys/resource.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <QtConcurrent/QtConcurrentMap>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

#include "bench_support.h"
#include "library/capture_registry.h"
#include "library/screenshot_store.h"
#include "storage/preferences.h"
#include "storage/user_settings.h"

namespace {

constexpr int kFileCount = 200;
constexpr int kColdRuns = 3;
constexpr int kWarmRuns = 15;
constexpr int kStormEvents = 100;

void writeScreenshots(const QString& folder) {
    QList<int> seeds;
    for (int i = 0; i < kFileCount; ++i) {
        seeds.append(i);
    }
    QtConcurrent::blockingMap(seeds, [&folder](int seed) {
        screenshotLikeImage(seed).save(
            QStringLiteral("%1/Screenshot_%2.png").arg(folder).arg(seed, 3, 10, QLatin1Char('0')),
            "PNG");
    });
}

double totalBytes(const QString& folder) {
    qint64 total = 0;
    for (const QFileInfo& info : QDir(folder).entryInfoList(QDir::Files)) {
        total += info.size();
    }
    return double(total);
}

// CPU time of the whole process (all threads), in milliseconds.
double processCpuMs() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1e3 +
           (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e3;
}

// Milliseconds from `start` until the store publishes its next scan.
double timeUntilPublished(ScreenshotStore& store, const std::function<void()>& start) {
    QElapsedTimer timer;
    double elapsed = -1;
    const QMetaObject::Connection connection =
        QObject::connect(&store, &ScreenshotStore::scanPublished, [&] {
            if (elapsed < 0) {
                elapsed = timer.nsecsElapsed() / 1e6;
            }
        });
    timer.start();
    start();
    store.waitForIdle(120000);
    QObject::disconnect(connection);
    return elapsed;
}

// Runs the event loop until `quietMs` pass without a published scan.
void settle(ScreenshotStore& store, int quietMs) {
    QEventLoop loop;
    QTimer quiet;
    quiet.setSingleShot(true);
    QObject::connect(&quiet, &QTimer::timeout, &loop, &QEventLoop::quit);
    QObject::connect(&store, &ScreenshotStore::scanPublished, &quiet,
                     [&quiet, quietMs] { quiet.start(quietMs); });
    quiet.start(quietMs);
    loop.exec();
    store.waitForIdle(120000);
}

struct ColdScanFigures {
    double listedMs = -1;
    double firstThumbnailsMs = -1;
    double allThumbnailsMs = -1;
    double cpuMs = 0;
};

// A store made by `open` from nothing cached: when its first list, its first
// thumbnails and its last thumbnails were published.
ColdScanFigures measureColdScan(const std::function<std::unique_ptr<ScreenshotStore>()>& open) {
    ColdScanFigures figures;
    QElapsedTimer timer;
    const double cpuBefore = processCpuMs();
    timer.start();
    const std::unique_ptr<ScreenshotStore> store = open();
    QObject::connect(store.get(), &ScreenshotStore::scanPublished, [&] {
        if (figures.listedMs < 0) {
            figures.listedMs = timer.nsecsElapsed() / 1e6;
        }
    });
    QObject::connect(store.get(), &ScreenshotStore::thumbnailsChanged, [&] {
        if (figures.firstThumbnailsMs < 0) {
            figures.firstThumbnailsMs = timer.nsecsElapsed() / 1e6;
        }
    });
    store->waitForIdle(120000);
    figures.allThumbnailsMs = timer.nsecsElapsed() / 1e6;
    figures.cpuMs = processCpuMs() - cpuBefore;
    return figures;
}

void printRuns(const char* what, const std::vector<double>& runs) {
    std::printf("%s: median %.0f ms of %d (", what, median(runs), int(runs.size()));
    for (double ms : runs) {
        std::printf(" %.0f", ms);
    }
    std::printf(" )\n");
}

struct StormFigures {
    int scans = 0;
    double settledMs = 0;
};

// `kStormEvents` entries created in the Desktop, `pauseMs` apart.
StormFigures measureStorm(ScreenshotStore& store, const QString& desktop, const QString& tag,
                          int pauseMs) {
    const int before = store.publishedScanCount();
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < kStormEvents; ++i) {
        QFile(QStringLiteral("%1/%2-%3.txt").arg(desktop, tag).arg(i)).open(QIODevice::WriteOnly);
        if (pauseMs > 0) {
            QThread::msleep(pauseMs);
            QCoreApplication::processEvents();
        }
    }
    store.waitForIdle(120000);
    const double lastScanDoneMs = timer.nsecsElapsed() / 1e6;
    settle(store, 500);
    return {store.publishedScanCount() - before, lastScanDoneMs};
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    QTemporaryDir home;
    const QString desktop = home.filePath(QStringLiteral("Desktop"));
    QDir().mkpath(desktop);
    const QString dataDir = home.filePath(QStringLiteral("data/Quillix"));

    QElapsedTimer generation;
    generation.start();
    writeScreenshots(desktop);
    std::printf("setup: %d PNGs of 1920x1080 written in %.1f s (%.1f MB), %d threads\n", kFileCount,
                generation.elapsed() / 1000.0, totalBytes(desktop) / 1e6,
                QThread::idealThreadCount());

    CaptureRegistry registry(dataDir, home.filePath(QStringLiteral("legacy")));
    for (const QFileInfo& info : QDir(desktop).entryInfoList(QDir::Files)) {
        registry.record(info.filePath());
    }
    UserSettings settings(dataDir, home.filePath(QStringLiteral("legacy")));
    settings.setShowOnlyQuillixItems(true);
    Preferences preferences(home.filePath(QStringLiteral("config/Quillix.conf")));
    const QString screenshotsFolder = home.filePath(QStringLiteral("Pictures/Screenshots"));

    std::vector<double> coldListed;
    std::vector<double> coldFirstThumbnails;
    std::vector<double> coldAllThumbnails;
    std::vector<double> coldCpu;
    for (int run = 0; run < kColdRuns; ++run) {
        const ColdScanFigures figures = measureColdScan([&] {
            return std::make_unique<ScreenshotStore>(desktop, screenshotsFolder, registry, settings,
                                                     preferences);
        });
        coldListed.push_back(figures.listedMs);
        coldFirstThumbnails.push_back(figures.firstThumbnailsMs);
        coldAllThumbnails.push_back(figures.allThumbnailsMs);
        coldCpu.push_back(figures.cpuMs);
    }
    printRuns("cold scan to list published (200 files, no thumbnails cached)", coldListed);
    printRuns("cold scan to first thumbnails published", coldFirstThumbnails);
    printRuns("cold scan to all thumbnails published", coldAllThumbnails);
    std::printf("cold scan CPU: median %.0f ms = %.1f ms per file\n", median(coldCpu),
                median(coldCpu) / kFileCount);

    ScreenshotStore store(desktop, screenshotsFolder, registry, settings, preferences);
    store.waitForIdle(120000);
    std::vector<double> warm;
    for (int run = 0; run < kWarmRuns; ++run) {
        warm.push_back(timeUntilPublished(store, [&store] { store.refresh(); }));
    }
    std::printf("warm rescan (nothing changed): median %.2f ms of %d (min %.2f, max %.2f)\n",
                median(warm), kWarmRuns, *std::min_element(warm.begin(), warm.end()),
                *std::max_element(warm.begin(), warm.end()));

    const StormFigures burst = measureStorm(store, desktop, QStringLiteral("burst"), 0);
    std::printf("storm of %d folder events at once: %d scans, idle after %.1f ms\n", kStormEvents,
                burst.scans, burst.settledMs);
    const StormFigures spaced = measureStorm(store, desktop, QStringLiteral("spaced"), 2);
    std::printf("storm of %d folder events 2 ms apart: %d scans, idle after %.1f ms\n",
                kStormEvents, spaced.scans, spaced.settledMs);
    std::printf("listed after the storms: %lld items\n",
                static_cast<long long>(store.screenshots().size()));
    return 0;
}
