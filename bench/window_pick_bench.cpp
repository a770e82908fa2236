// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// bench_window_pick: what pointing at a window costs.
//
//   bench_window_pick [--windows N] [--lookups N]
//
// Run it inside scripts/with-desktop. A child process opens N top-level
// windows (default 50) scattered over the screen; then
//   look-up     the window under a point through the desktop's window list,
//               the way every pointer move of a pick asks (median and
//               maximum over the look-ups);
//   coalescing  1,000 pointer moves arriving within half a second during a
//               pick, and how many look-ups they caused (one per frame at
//               most, however fast the moves come);
//   after picks the look-ups a pointer move causes after three picks have
//               ended (none: nothing of a pick stays behind).

#include <QApplication>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QProcess>
#include <QRandomGenerator>
#include <QScreen>
#include <QTest>
#include <QWidget>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

#include "platform/platform_services.h"
#include "platform/pointer_picker.h"
#include "platform/window_list.h"
#include "support/pick_fakes.h"
#include "widgets/window_pick_session.h"

namespace {

constexpr int kMoves = 1000;
constexpr int kMoveSpanMs = 500;

int runWindows(int count) {
    std::vector<std::unique_ptr<QWidget>> windows;
    QRandomGenerator random(7);
    for (int index = 0; index < count; ++index) {
        auto window = std::make_unique<QWidget>();
        window->setWindowTitle(QStringLiteral("Bench window %1").arg(index));
        window->setGeometry(random.bounded(1500), random.bounded(24, 700),
                            200 + random.bounded(200), 150 + random.bounded(200));
        window->show();
        windows.push_back(std::move(window));
    }
    QTimer::singleShot(1000, [] {
        std::printf("ready\n");
        std::fflush(stdout);
    });
    return QApplication::exec();
}

void measureLookUps(WindowList& list, int lookUps) {
    std::vector<double> micros;
    QRandomGenerator random(11);
    QElapsedTimer clock;
    size_t found = 0;
    for (int index = 0; index < lookUps; ++index) {
        const QPoint point(random.bounded(1920), random.bounded(1080));
        clock.start();
        found += list.windowAt(point).has_value() ? 1 : 0;
        micros.push_back(double(clock.nsecsElapsed()) / 1000.0);
    }
    std::sort(micros.begin(), micros.end());
    std::printf(
        "look-up      %zu windows listed   median %7.1f µs   p95 %7.1f µs   max %7.1f µs   "
        "(%d look-ups, %zu over a window)\n",
        list.windows().size(), micros[micros.size() / 2], micros[micros.size() * 95 / 100],
        micros.back(), lookUps, found);
}

void measureCoalescing(WindowList& list) {
    CountingWindowList counting(list);
    auto pointer = std::make_unique<FakePointerPicker>();
    FakePointerPicker* moves = pointer.get();
    WindowPickSession session(OutlineStyle::captureTarget(), std::move(pointer), &counting);
    session.start();
    QElapsedTimer clock;
    clock.start();
    for (int move = 0; move < kMoves; ++move) {
        Q_EMIT moves->moved(QPoint(200 + move % 800, 300 + move % 300));
        while (clock.elapsed() < qint64(move + 1) * kMoveSpanMs / kMoves) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        }
    }
    QTest::qWait(50);
    std::printf("coalescing   %d moves in %lld ms   %d look-ups\n", kMoves, clock.elapsed(),
                counting.lookUps);
    session.stop();
}

void measureAfterPicks(WindowList& list) {
    CountingWindowList counting(list);
    for (int pick = 0; pick < 3; ++pick) {
        auto pointer = std::make_unique<FakePointerPicker>();
        FakePointerPicker* moves = pointer.get();
        WindowPickSession session(OutlineStyle::captureTarget(), std::move(pointer), &counting);
        session.start();
        Q_EMIT moves->moved(QPoint(400, 400));
        QTest::qWait(40);
        Q_EMIT moves->clicked(QPoint(400, 400));
        QTest::qWait(20);
    }
    const int afterPicks = counting.lookUps;
    QCursor::setPos(900, 500);
    QTest::qWait(100);
    std::printf("after picks  3 picks   %d look-ups for a pointer move afterwards\n",
                counting.lookUps - afterPicks);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 2 && QByteArray(argv[1]) == "--child") {
        QApplication application(argc, argv);
        return runWindows(QByteArray(argv[2]).toInt());
    }
    QApplication application(argc, argv);
    int windows = 50;
    int lookUps = 2000;
    const QStringList arguments = QCoreApplication::arguments();
    for (qsizetype i = 1; i + 1 < arguments.size(); ++i) {
        if (arguments[i] == QStringLiteral("--windows")) {
            windows = std::max(1, arguments[i + 1].toInt());
        } else if (arguments[i] == QStringLiteral("--lookups")) {
            lookUps = std::max(1, arguments[i + 1].toInt());
        }
    }
    WindowList* list = PlatformServices::instance().windowList();
    if (list == nullptr) {
        std::fprintf(stderr, "no window list on this display\n");
        return 1;
    }
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(),
                {QStringLiteral("--child"), QString::number(windows)});
    if (!child.waitForReadyRead(30000)) {
        std::fprintf(stderr, "the windows did not come up\n");
        return 1;
    }
    measureLookUps(*list, lookUps);
    measureCoalescing(*list);
    measureAfterPicks(*list);
    child.kill();
    child.waitForFinished(5000);
    return 0;
}
