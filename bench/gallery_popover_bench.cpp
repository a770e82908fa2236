// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// Measures the gallery popover's content over a full library: 200 real PNG
// screenshots on the Desktop, listed with their thumbnails.
//
// (a) Opening: the popover window is hidden, "popoverWillShow" is announced
//     and the window shown; the time runs until the grid's first frame with
//     its thumbnails has been painted. Also: a full render of the content
//     at rest, and the frames painted during the entrance animation.
// (b) Typing: the time to filter the 200 items again for each keystroke
//     typed into the search field (with and without the redraw that
//     follows), without and with a colour filter that consults the
//     metadata of every item.
//
// Figures only; nothing here passes or fails on time.
//
//   scripts/with-desktop build/bin/bench_gallery_popover [--save-frame FILE.png]

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QLineEdit>
#include <QPainter>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QThread>
#include <QVBoxLayout>
#include <QtConcurrent/QtConcurrentMap>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "bench_support.h"
#include "gallery/gallery_grid_view.h"
#include "gallery/menu_bar_view.h"
#include "gallery/screenshot_filter_model.h"
#include "library/capture_registry.h"
#include "library/screenshot_store.h"
#include "storage/preferences.h"
#include "storage/screenshot_metadata_store.h"
#include "storage/user_settings.h"
#include "widget_watch.h"

namespace {

constexpr int kPopoverTimeoutMs = 5000;

constexpr int kFileCount = 200;
constexpr int kOpenings = 25;
constexpr int kTypingRounds = 5;
const QString kTyped = QStringLiteral("screenshot_1");

double maximum(const std::vector<double>& values) {
    return values.empty() ? -1 : *std::max_element(values.begin(), values.end());
}

void printRuns(const char* what, const std::vector<double>& runs) {
    std::printf("%s: median %.2f ms, max %.2f ms, %d runs\n", what, median(runs), maximum(runs),
                int(runs.size()));
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QString saveFrame;
    for (int i = 1; i + 1 < argc; ++i) {
        if (QString::fromLocal8Bit(argv[i]) == QStringLiteral("--save-frame")) {
            saveFrame = QString::fromLocal8Bit(argv[i + 1]);
        }
    }

    QTemporaryDir home;
    const QString desktop = home.filePath(QStringLiteral("Desktop"));
    const QString dataDir = home.filePath(QStringLiteral("data/Quillix"));
    const QString legacyDir = home.filePath(QStringLiteral("legacy"));
    QDir().mkpath(desktop);

    QElapsedTimer setup;
    setup.start();
    QList<int> seeds;
    for (int i = 0; i < kFileCount; ++i) {
        seeds.append(i);
    }
    QtConcurrent::blockingMap(seeds, [&desktop](int seed) {
        screenshotLikeImage(seed, QSize(960, 540))
            .save(QStringLiteral("%1/Screenshot_%2.png")
                      .arg(desktop)
                      .arg(seed, 3, 10, QLatin1Char('0')),
                  "PNG");
    });

    CaptureRegistry registry(dataDir, legacyDir);
    UserSettings settings(dataDir, legacyDir);
    settings.setShowOnlyQuillixItems(false);
    Preferences preferences(home.filePath(QStringLiteral("config/Quillix.conf")));
    ScreenshotMetadataStore metaStore(dataDir);
    ScreenshotStore store(desktop, home.filePath(QStringLiteral("Pictures/Screenshots")), registry,
                          settings, preferences);
    if (!store.waitForIdle(60000)) {
        // Measured anyway; the set-up line says how many thumbnails arrived.
        std::printf("note: the library did not report idle within 60 s\n");
    }
    int withThumbnail = 0;
    for (const ScreenshotItem& item : store.screenshots()) {
        withThumbnail += item.thumbnail().isNull() ? 0 : 1;
        // Every fourth capture blue, so a colour filter has work to do.
        if (item.fileName().endsWith(QStringLiteral("0.png")) ||
            item.fileName().endsWith(QStringLiteral("4.png"))) {
            metaStore.setColorLabel(ColorLabel::blue, item.path());
        }
    }
    std::printf(
        "setup: %d PNGs of 960x540 listed, %d with thumbnails, %lld labelled blue (%.1f s)\n",
        int(store.screenshots().size()), withThumbnail,
        static_cast<long long>(metaStore.metadata().size()), setup.elapsed() / 1000.0);

    // The popover: a frameless tool window with the view as its content.
    QWidget popover(nullptr, Qt::Tool | Qt::FramelessWindowHint);
    auto* layout = new QVBoxLayout(&popover);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* view = new MenuBarView(store, metaStore, settings, &popover);
    layout->addWidget(view);
    popover.setFixedSize(MenuBarView::kSize);
    popover.move(200, 40);
    auto* gridPaints = new PaintWatch(view->gridView()->viewport());

    // (a) Openings.
    std::vector<double> firstFrame;
    std::vector<double> entranceFrames;
    for (int opening = 0; opening <= kOpenings; ++opening) {
        popover.hide();
        spinUntil([] { return false; }, 50);
        const int before = gridPaints->paints;
        QElapsedTimer timer;
        timer.start();
        view->prepareToShow();
        popover.show();
        if (!spinUntil([&] { return gridPaints->paints > before; }, kPopoverTimeoutMs)) {
            std::printf("opening %d: no frame within 5 s\n", opening);
            continue;
        }
        const double ms = timer.nsecsElapsed() / 1e6;
        // The first opening also builds the window; it is reported apart.
        if (opening == 0) {
            std::printf("first opening (window created): first grid frame after %.2f ms\n", ms);
        } else {
            firstFrame.push_back(ms);
        }
        const int atFirstFrame = gridPaints->paints;
        spinUntil([&] { return false; }, 400);
        entranceFrames.push_back(gridPaints->paints - atFirstFrame);
    }
    printRuns("(a) opening to first grid frame with thumbnails", firstFrame);
    std::printf("    grid frames painted during the 0.28 s entrance: median %.0f\n",
                median(entranceFrames));

    std::vector<double> atRest;
    QImage frame;
    for (int run = 0; run < 15; ++run) {
        QElapsedTimer timer;
        timer.start();
        frame = view->grab().toImage();
        atRest.push_back(timer.nsecsElapsed() / 1e6);
    }
    printRuns("    full render of the content at rest (grab)", atRest);
    if (!saveFrame.isEmpty()) {
        frame.save(saveFrame);
    }

    // (b) Typing.
    view->toggleFilterPanel();
    spinUntil([] { return false; }, 400);
    if (!saveFrame.isEmpty()) {
        view->setColorFilter(ColorLabel::blue);
        view->setDateFilter(MenuBarView::DateFilter::week);
        spinUntil([] { return false; }, 400);
        view->grab().toImage().save(
            QString(saveFrame).replace(QStringLiteral(".png"), QStringLiteral("-panel.png")));
        view->setColorFilter(std::nullopt);
        view->setDateFilter(MenuBarView::DateFilter::all);
    }
    QLineEdit* field = view->searchField();
    const auto typeRounds = [&](std::vector<double>& filterOnly, std::vector<double>& withRedraw) {
        for (int round = 0; round < kTypingRounds; ++round) {
            for (const QChar character : kTyped) {
                QElapsedTimer timer;
                timer.start();
                field->insert(QString(character));
                filterOnly.push_back(timer.nsecsElapsed() / 1e6);
                view->gridView()->viewport()->repaint();
                withRedraw.push_back(timer.nsecsElapsed() / 1e6);
                QCoreApplication::processEvents();
            }
            field->clear();
            QCoreApplication::processEvents();
        }
    };
    std::vector<double> filterOnly;
    std::vector<double> withRedraw;
    typeRounds(filterOnly, withRedraw);
    std::printf("(b) typing \"%s\" %d times over %d items\n", qPrintable(kTyped), kTypingRounds,
                kFileCount);
    printRuns("    filter per keystroke", filterOnly);
    printRuns("    filter and grid repaint per keystroke", withRedraw);

    view->setColorFilter(ColorLabel::blue);
    std::vector<double> blueFilterOnly;
    std::vector<double> blueWithRedraw;
    typeRounds(blueFilterOnly, blueWithRedraw);
    std::printf("    with the blue colour filter on (%d shown before typing)\n",
                view->filterModel()->rowCount());
    printRuns("    filter per keystroke", blueFilterOnly);
    printRuns("    filter and grid repaint per keystroke", blueWithRedraw);
    return 0;
}
