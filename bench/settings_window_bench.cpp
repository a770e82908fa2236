// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// Measures the settings window with 50 shelves of 40 files each.
//
// (a) The first "Settings" click: building the window and its six sections
//     until its first frame is painted.
// (b) Every shelf's item count shown (counted on workers).
// (c) Showing each section from the sidebar, until it is painted.
//
// Figures only; nothing here passes or fails on time.
//
//   scripts/with-desktop build/bin/bench_settings_window

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <cstdio>

#include "platform/autostart_entry.h"
#include "platform/dbus/freedesktop_notifier.h"
#include "platform/keyboard_layout.h"
#include "settings/about_settings_view.h"
#include "settings/general_settings_view.h"
#include "settings/help_settings_view.h"
#include "settings/hotkeys_settings_view.h"
#include "settings/settings_view.h"
#include "settings/settings_window_controller.h"
#include "settings/shelves_settings_view.h"
#include "settings/storage_settings_view.h"
#include "storage/preferences.h"
#include "storage/shelf_store.h"
#include "storage/user_settings.h"
#include "widget_watch.h"

namespace {

constexpr int kShelves = 50;
constexpr int kFilesPerShelf = 40;
constexpr int kTimeoutMs = 30000;

void fillShelves(ShelfStore& shelves) {
    for (int i = 0; i < kShelves; ++i) {
        if (shelves.createShelf(QStringLiteral("Shelf %1").arg(i))) {
            continue;
        }
        const QString folder = shelves.shelves().constLast().folderPath;
        for (int file = 0; file < kFilesPerShelf; ++file) {
            QFile(QStringLiteral("%1/capture_%2.png").arg(folder).arg(file))
                .open(QIODevice::WriteOnly);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QTemporaryDir home;
    const QString data = home.filePath(QStringLiteral("data/Quillix"));
    const QString desktop = home.filePath(QStringLiteral("Desktop"));
    QDir().mkpath(desktop);
    UserSettings settings(data, home.filePath(QStringLiteral("legacy")));
    Preferences preferences(home.filePath(QStringLiteral("config/Quillix.conf")));
    ShelfStore shelves(data, home.filePath(QStringLiteral("legacy")), settings, desktop);
    fillShelves(shelves);
    FixedKeyboardLayout layout;
    FreedesktopNotifier notifier;
    AutostartEntry autostart(home.filePath(QStringLiteral("autostart/quillix.desktop")),
                             QStringLiteral("/usr/bin/quillix"));
    SettingsWindowController controller(SettingsServices{preferences,
                                                         settings,
                                                         shelves,
                                                         layout,
                                                         notifier,
                                                         autostart,
                                                         home.filePath(QStringLiteral("icons")),
                                                         [] { return true; },
                                                         [] { return true; },
                                                         [] {},
                                                         [] {},
                                                         {}});
    std::printf("setup: %d shelves of %d files\n", int(shelves.shelves().size()), kFilesPerShelf);

    // Every paint of the program: the window is its only one.
    auto* painted = new PaintWatch(nullptr);
    application.installEventFilter(painted);
    QElapsedTimer clock;
    clock.start();
    controller.show();
    QSignalSpy counted(controller.view()->shelves(), &ShelvesSettingsView::countsShown);
    spinUntil([&] { return painted->paints > 0; }, kTimeoutMs);
    std::printf("(a) first show until painted: %.1f ms\n", clock.nsecsElapsed() / 1e6);
    spinUntil([&] { return !counted.isEmpty(); }, kTimeoutMs);
    std::printf("(b) %d shelf counts shown: %.1f ms after the first show\n", kShelves,
                clock.nsecsElapsed() / 1e6);

    SettingsView& view = *controller.view();
    // General is shown first, so it is measured last, after the others.
    QList<SettingsSection> order(kAllSettingsSections.begin() + 1, kAllSettingsSections.end());
    order.append(SettingsSection::general);
    for (const SettingsSection section : order) {
        spinUntil([] { return false; }, 100);  // let the last paint settle
        painted->paints = 0;
        clock.restart();
        view.select(section);
        spinUntil([&] { return painted->paints > 0; }, kTimeoutMs);
        std::printf("(c) %-8s shown until painted: %.1f ms\n", qPrintable(sidebarTitle(section)),
                    clock.nsecsElapsed() / 1e6);
    }
    return 0;
}
