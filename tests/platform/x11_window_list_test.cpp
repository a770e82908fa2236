// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/x11/x11_window_list.h"

#include <QGuiApplication>
#include <QRasterWindow>
#include <QScreen>
#include <QtTest>
#include <algorithm>

#include "platform/platform_services.h"
#include "support/x11_test_desktop.h"

namespace {

const WindowInfo* find(const std::vector<WindowInfo>& windows, quint32 id) {
    const auto hit = std::find_if(windows.begin(), windows.end(),
                                  [id](const WindowInfo& window) { return window.windowId == id; });
    return hit == windows.end() ? nullptr : &*hit;
}

int position(const std::vector<WindowInfo>& windows, quint32 id) {
    const WindowInfo* window = find(windows, id);
    return window == nullptr ? -1 : int(window - windows.data());
}

}  // namespace

// The window list of the test desktop's openbox, against what the X server
// itself says about the frames openbox draws.
class X11WindowListTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { list_ = PlatformServices::instance().windowList(); }
    void cleanup() { desktop_.closeAll(); }

    void framesIncludeDecorationsAndTheFrontWindowIsFirst() {
        QVERIFY(list_ != nullptr);
        const quint32 back = desktop_.openWindow({200, 200, 400, 300}, "red", "Back window");
        const quint32 front = desktop_.openWindow({350, 300, 400, 300}, "blue", "Front window");
        QVERIFY(back != 0 && front != 0);

        const std::vector<WindowInfo> windows = list_->windows();
        const WindowInfo* backInfo = find(windows, back);
        const WindowInfo* frontInfo = find(windows, front);
        QVERIFY(backInfo != nullptr && frontInfo != nullptr);
        QVERIFY(position(windows, front) < position(windows, back));
        for (const WindowInfo* info : {backInfo, frontInfo}) {
            // The frame is openbox's frame window, title bar and borders in.
            QCOMPARE(info->frame, desktop_.frameOf(info->windowId));
            const QRect client = desktop_.viewableRect(info->windowId);
            QVERIFY(info->frame.contains(client));
            QVERIFY(info->frame.height() > client.height());
            QCOMPARE(info->ownerName, QStringLiteral("test_window"));
            QCOMPARE(info->displayName, QGuiApplication::primaryScreen()->name());
        }

        // Where they overlap the front one is hit, elsewhere each its own.
        const QPoint overlap = backInfo->frame.intersected(frontInfo->frame).center();
        QCOMPARE(list_->windowAt(overlap)->windowId, front);
        QCOMPARE(list_->windowAt(backInfo->frame.topLeft() + QPoint(5, 5))->windowId, back);
        QCOMPARE(list_->windowAt(frontInfo->frame.bottomRight())->windowId, front);
        QVERIFY(!list_->windowAt(frontInfo->frame.bottomRight() + QPoint(1, 1)));

        // Raised, the back window takes the overlap.
        X11TestDesktop::xdotool({"windowactivate", "--sync", QString::number(back)});
        QTRY_COMPARE(list_->windowAt(overlap)->windowId, back);
    }

    void ownWindowsDocksAndMinimisedWindowsAreNeverListed() {
        QVERIFY(list_ != nullptr);
        QRasterWindow own;
        own.setGeometry(600, 500, 300, 200);
        own.show();
        QVERIFY(QTest::qWaitForWindowExposed(&own));
        // A window of another program without _NET_WM_PID: named by its class.
        const quint32 logo =
            desktop_.openProgram("xlogo", {"-geometry", "200x150+1200+500"}, "xlogo");
        QVERIFY(logo != 0);

        std::vector<WindowInfo> windows = list_->windows();
        QVERIFY(!find(windows, quint32(own.winId())));
        QCOMPARE(find(windows, logo)->ownerName, QStringLiteral("xlogo"));
        // The tray host's panel is a dock.
        QVERIFY(std::none_of(windows.begin(), windows.end(), [](const WindowInfo& window) {
            return window.ownerName == QStringLiteral("trayer");
        }));
        const std::optional<WindowInfo> underOwn = list_->windowAt(own.geometry().center());
        QVERIFY(!underOwn || underOwn->windowId != own.winId());

        X11TestDesktop::xdotool({"windowminimize", "--sync", QString::number(logo)});
        QTRY_VERIFY(!find(list_->windows(), logo));
    }

private:
    X11TestDesktop desktop_;
    WindowList* list_ = nullptr;
};

QTEST_MAIN(X11WindowListTest)
#include "x11_window_list_test.moc"
