// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// bench_area_overlay: how fast the area editor covers the screen, and how
// fast Return puts the PNG on disk.
//
//   bench_area_overlay [--xvfb WxH] [--runs N]
//
// Without --xvfb it uses $DISPLAY (run it inside scripts/with-desktop); with
// --xvfb it starts a private Xvfb of that size first (for example 3840x2160).
// Figures, per run and as medians:
//   freeze+paint: start() to the overlay's first frame (frozen screen
//                 included) painted on an exposed window, inside the process;
//   map:          start() to the X server's MapNotify of the overlay, seen by
//                 a second X connection watching the root window;
//   save:         Return on a whole-screen selection to the PNG written.

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

#include "area_capture/annotation_overlay_controller.h"
#include "bench_support.h"
#include "storage/preferences.h"

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;

double millisecondsBetween(Clock::time_point from, Clock::time_point to) {
    return std::chrono::duration<double, std::milli>(to - from).count();
}

// Watches the root window from a connection of its own and notes when an
// override-redirect window is mapped.
class MapWatcher {
public:
    MapWatcher() {
        connection_ = xcb_connect(nullptr, nullptr);
        if (xcb_connection_has_error(connection_)) {
            return;
        }
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
        const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_void_cookie_t cookie = xcb_change_window_attributes_checked(connection_, screen->root,
                                                                        XCB_CW_EVENT_MASK, &mask);
        free(xcb_request_check(connection_, cookie));
        thread_ = std::thread([this] { run(); });
    }
    ~MapWatcher() {
        stop_ = true;
        if (thread_.joinable()) {
            thread_.join();
        }
        xcb_disconnect(connection_);
    }

    void arm() { mapped_ = false; }
    std::optional<Clock::time_point> mappedAt() const {
        if (!mapped_) {
            return std::nullopt;
        }
        return Clock::time_point(Clock::duration(mappedAtTicks_.load()));
    }

private:
    void run() {
        pollfd descriptor{xcb_get_file_descriptor(connection_), POLLIN, 0};
        while (!stop_) {
            while (xcb_generic_event_t* event = xcb_poll_for_event(connection_)) {
                const auto now = Clock::now();
                if ((event->response_type & 0x7f) == XCB_MAP_NOTIFY) {
                    const auto* map = reinterpret_cast<xcb_map_notify_event_t*>(event);
                    if (map->override_redirect && !mapped_) {
                        mappedAtTicks_ = now.time_since_epoch().count();
                        mapped_ = true;
                    }
                }
                free(event);
            }
            poll(&descriptor, 1, 50);
        }
    }

    xcb_connection_t* connection_ = nullptr;
    std::thread thread_;
    std::atomic<bool> stop_ = false;
    std::atomic<bool> mapped_ = false;
    std::atomic<Clock::rep> mappedAtTicks_ = 0;
};

// A private X server of the given size; DISPLAY points at it while it lives.
class PrivateXvfb {
public:
    explicit PrivateXvfb(const QString& size) {
        int fds[2];
        if (pipe(fds) != 0) {
            return;
        }
        const std::string screen = size.toStdString() + "x24";
        const std::string fd = std::to_string(fds[1]);
        const char* argv[] = {"Xvfb", "-screen",    "0",        screen.c_str(), "-nolisten",
                              "tcp",  "-displayfd", fd.c_str(), nullptr};
        if (posix_spawnp(&pid_, "Xvfb", nullptr, nullptr, const_cast<char**>(argv), environ) != 0) {
            pid_ = 0;
            return;
        }
        close(fds[1]);
        char number[16] = {};
        const ssize_t length = read(fds[0], number, sizeof number - 1);
        close(fds[0]);
        if (length > 0) {
            const QByteArray display = ":" + QByteArray(number, int(length)).trimmed();
            qputenv("DISPLAY", display);
        }
    }
    ~PrivateXvfb() {
        if (pid_ > 0) {
            kill(pid_, SIGTERM);
            waitpid(pid_, nullptr, 0);
        }
    }

private:
    pid_t pid_ = 0;
};

struct OpenTimes {
    double paint = 0;
    std::optional<double> map;
};

std::optional<OpenTimes> openAndCancel(MapWatcher& watcher) {
    watcher.arm();
    bool painted = false;
    Clock::time_point paintedAt;
    QPointer<AnnotationOverlayController> controller;
    const auto startedAt = Clock::now();
    AnnotationOverlayController::start([&](AnnotationOverlayController& opened) {
        controller = &opened;
        QObject::connect(&opened, &AnnotationOverlayController::firstFramePainted, [&] {
            paintedAt = Clock::now();
            painted = true;
        });
    });
    if (!QTest::qWaitFor([&] { return painted; }, 10000) || !controller) {
        return std::nullopt;
    }
    QTest::qWait(50);  // the map watcher's poll
    OpenTimes times{millisecondsBetween(startedAt, paintedAt), std::nullopt};
    if (const auto mappedAt = watcher.mappedAt()) {
        times.map = millisecondsBetween(startedAt, *mappedAt);
    }
    controller->dismiss();
    if (!QTest::qWaitFor([&] { return controller.isNull(); }, 5000)) {
        std::printf("the overlay did not close\n");
    }
    return times;
}

std::optional<double> saveWholeScreen() {
    QScreen* screen = QGuiApplication::primaryScreen();
    auto* controller = new AnnotationOverlayController(screen, true, screen->grabWindow(0));
    bool painted = false;
    bool saved = false;
    QObject::connect(controller, &AnnotationOverlayController::firstFramePainted,
                     [&] { painted = true; });
    Clock::time_point savedAt;
    QString path;
    QObject::connect(controller, &AnnotationOverlayController::saved, [&](const QString& file) {
        savedAt = Clock::now();
        path = file;
        saved = true;
    });
    controller->show();
    if (!QTest::qWaitFor([&] { return painted; }, 10000)) {
        return std::nullopt;
    }
    const auto returnAt = Clock::now();
    QTest::keyClick(controller->overlayWindow(), Qt::Key_Return);
    if (!QTest::qWaitFor([&] { return saved; }, 10000)) {
        return std::nullopt;
    }
    QTest::qWait(100);
    QFile::remove(path);
    return millisecondsBetween(returnAt, savedAt);
}

}  // namespace

int main(int argc, char** argv) {
    QString xvfbSize;
    int runs = 10;
    for (int i = 1; i + 1 < argc; ++i) {
        if (QByteArray(argv[i]) == "--xvfb") {
            xvfbSize = QString::fromLocal8Bit(argv[i + 1]);
        } else if (QByteArray(argv[i]) == "--runs") {
            runs = std::max(1, atoi(argv[i + 1]));
        }
    }
    std::optional<PrivateXvfb> xvfb;
    if (!xvfbSize.isEmpty()) {
        xvfb.emplace(xvfbSize);
    }
    QTemporaryDir home;
    qputenv("HOME", home.path().toUtf8());
    qputenv("XDG_CONFIG_HOME", home.filePath(QStringLiteral("config")).toUtf8());
    qputenv("XDG_DATA_HOME", home.filePath(QStringLiteral("data")).toUtf8());
    QApplication app(argc, argv);
    Preferences::shared().setCustomSaveFolder(home.filePath(QStringLiteral("captures")));
    QScreen* screen = QGuiApplication::primaryScreen();
    const QSize pixels = screen->geometry().size() * screen->devicePixelRatio();
    std::printf("screen %dx%d pixels on %s\n", pixels.width(), pixels.height(),
                qgetenv("DISPLAY").constData());

    QElapsedTimer warm;
    warm.start();
    AnnotationOverlayController::warmUp();
    std::printf("warmUp (first grab of the process): %.1f ms\n", warm.nsecsElapsed() / 1e6);

    MapWatcher watcher;
    std::vector<double> paints;
    std::vector<double> maps;
    for (int run = 0; run < runs; ++run) {
        if (const auto times = openAndCancel(watcher)) {
            paints.push_back(times->paint);
            std::printf("open %2d: freeze+paint %6.1f ms", run + 1, times->paint);
            if (times->map) {
                maps.push_back(*times->map);
                std::printf("   map %6.1f ms", *times->map);
            }
            std::printf("\n");
        }
    }
    std::vector<double> saves;
    for (int run = 0; run < std::max(3, runs / 2); ++run) {
        if (const auto saved = saveWholeScreen()) {
            saves.push_back(*saved);
            std::printf("save %2d: Return to PNG on disk %6.1f ms\n", run + 1, *saved);
        }
    }
    std::printf("median freeze+paint %.1f ms, map %.1f ms, Return to PNG %.1f ms (%dx%d)\n",
                median(paints), median(maps), median(saves), pixels.width(), pixels.height());
    return 0;
}
