// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "widgets/window_pick_session.h"

#include <xcb/xcb.h>

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QScreen>
#include <QSignalSpy>
#include <QtTest>

#include "platform/platform_services.h"
#include "platform/pointer_picker.h"
#include "support/pick_fakes.h"
#include "support/x11_test_desktop.h"

namespace {

WindowOutline* outlineOnScreen() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* outline = qobject_cast<WindowOutline*>(widget);
        if (outline != nullptr && outline->isVisible()) {
            return outline;
        }
    }
    return nullptr;
}

int outlinesAlive() {
    const QWidgetList widgets = QApplication::topLevelWidgets();
    return int(std::count_if(widgets.begin(), widgets.end(), [](QWidget* widget) {
        return qobject_cast<WindowOutline*>(widget) != nullptr;
    }));
}

void pointerTo(const QPoint& point) {
    X11TestDesktop::xdotool({"mousemove", QString::number(point.x()), QString::number(point.y())});
}

void click() {
    X11TestDesktop::xdotool({"click", "1"});
}

// A pointer move on the root as the X server reports it during a grab.
bool rootMotionIsSwallowed() {
    xcb_motion_notify_event_t motion{};
    motion.response_type = XCB_MOTION_NOTIFY;
    auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    motion.event = xcb_setup_roots_iterator(xcb_get_setup(x11->connection())).data->root;
    motion.root_x = 10;
    motion.root_y = 10;
    qintptr result = 0;
    return QAbstractEventDispatcher::instance()->filterNativeEvent("xcb_generic_event_t", &motion,
                                                                   &result);
}

}  // namespace

// Picking a window with the real pointer grab, window list and outline window
// on the test desktop, driven through the X server with xdotool.
class WindowPickSessionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(PlatformServices::instance().windowList() != nullptr);
        target_ = desktop_.openWindow({300, 200, 500, 400}, "green", "Target window");
        QVERIFY(target_ != 0);
        targetFrame_ = desktop_.frameOf(target_);
    }

    void init() { counting_.lookUps = 0; }

    void hoverOutlinesTheFrameAndAClickPicksTheWindow() {
        WindowPickSession session(OutlineStyle::recordingTarget(), picker(), &counting_);
        QSignalSpy picked(&session, &WindowPickSession::picked);
        session.start();
        pointerTo(targetFrame_.center());
        QTRY_VERIFY(outlineOnScreen() != nullptr);
        // The outline window covers the frame exactly, decorations included.
        QTRY_COMPARE(desktop_.viewableRect(quint32(outlineOnScreen()->winId())), targetFrame_);
        QVERIFY(!desktop_.pointerAndKeyboardFree());
        // On the screen: the stroke in the outline's colour, the window
        // itself still visible inside it (no compositor here: the outline
        // window is shaped to the stroke).
        const QImage screen = QGuiApplication::primaryScreen()->grabWindow(0).toImage();
        const QPoint middle = targetFrame_.center();
        QCOMPARE(screen.pixelColor(targetFrame_.left() + 2, middle.y()), QColor(0, 122, 255));
        QCOMPARE(screen.pixelColor(middle.x(), targetFrame_.top() + 2), QColor(0, 122, 255));
        QCOMPARE(screen.pixelColor(middle), QColor("green"));
        QCOMPARE(screen.pixelColor(targetFrame_.left() + 6, middle.y()), QColor("green"));

        click();
        QTRY_COMPARE(picked.size(), 1);
        QCOMPARE(picked.at(0).at(0).value<WindowInfo>().windowId, target_);
        QCOMPARE(picked.at(0).at(0).value<WindowInfo>().frame, targetFrame_);
        QVERIFY(!session.isActive());
        QCOMPARE(outlinesAlive(), 0);
        QVERIFY(desktop_.pointerAndKeyboardFree());
    }

    void aClickOnTheDesktopKeepsPickingAndEscapeCancels() {
        WindowPickSession session(OutlineStyle::captureTarget(), picker(), &counting_);
        QSignalSpy picked(&session, &WindowPickSession::picked);
        QSignalSpy cancelled(&session, &WindowPickSession::cancelled);
        session.start();
        pointerTo(targetFrame_.center());
        QTRY_VERIFY(outlineOnScreen() != nullptr);

        const QPoint background(1500, 900);
        pointerTo(background);
        QTRY_VERIFY(outlineOnScreen() == nullptr);
        click();
        QTest::qWait(100);
        QVERIFY(session.isActive());
        QCOMPARE(picked.size(), 0);
        QVERIFY(!session.hoveredWindow());

        X11TestDesktop::xdotool({"key", "Escape"});
        QTRY_COMPARE(cancelled.size(), 1);
        QCOMPARE(picked.size(), 0);
        QCOMPARE(outlinesAlive(), 0);
        QVERIFY(desktop_.pointerAndKeyboardFree());
    }

    void ownWindowsAreNeverOutlined() {
        QWidget own;
        own.setWindowTitle(QStringLiteral("Own window"));
        own.setGeometry(1000, 300, 400, 300);
        own.show();
        QVERIFY(QTest::qWaitForWindowExposed(&own));
        WindowPickSession session(OutlineStyle::recordingTarget(), picker(), &counting_);
        session.start();
        pointerTo(own.geometry().center());
        QTRY_VERIFY(counting_.lookUps > 0);
        QTest::qWait(50);
        QVERIFY(!session.hoveredWindow());
        QVERIFY(outlineOnScreen() == nullptr);
        session.stop();
    }

    void threePicksLeaveNoGrabFilterOrLookUpBehind() {
        for (int pick = 0; pick < 3; ++pick) {
            WindowPickSession session(OutlineStyle::captureTarget(), picker(), &counting_);
            QSignalSpy picked(&session, &WindowPickSession::picked);
            session.start();
            QVERIFY(rootMotionIsSwallowed());
            pointerTo(targetFrame_.center() + QPoint(pick * 10, 0));
            QTRY_VERIFY(outlineOnScreen() != nullptr);
            click();
            QTRY_COMPARE(picked.size(), 1);
        }
        QVERIFY(desktop_.pointerAndKeyboardFree());
        QVERIFY(!rootMotionIsSwallowed());
        // Pointer moves after the picks ask for no window at all.
        const int afterPicks = counting_.lookUps;
        for (int step = 0; step < 5; ++step) {
            pointerTo(QPoint(400 + step * 20, 300));
        }
        QTest::qWait(100);
        QCOMPARE(counting_.lookUps, afterPicks);
        QCOMPARE(outlinesAlive(), 0);
    }

    void cleanupTestCase() { desktop_.closeAll(); }

private:
    static std::unique_ptr<PointerPicker> picker() {
        return PlatformServices::instance().createPointerPicker();
    }

    X11TestDesktop desktop_;
    CountingWindowList counting_{*PlatformServices::instance().windowList()};
    quint32 target_ = 0;
    QRect targetFrame_;
};

QTEST_MAIN(WindowPickSessionTest)
#include "window_pick_session_test.moc"
