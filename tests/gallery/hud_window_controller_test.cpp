// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "gallery/hud_window_controller.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QSignalSpy>
#include <QtTest>

#include "gallery/hud_row.h"

// The capture HUD on the test desktop: where it opens, what closes it, and
// when its rows start their actions. Escape and the whole program have the
// end-to-end tests.
class HUDWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void placementStaysInsideTheAvailableArea_data() {
        QTest::addColumn<QPoint>("pointer");
        QTest::addColumn<QRect>("available");
        QTest::addColumn<QPoint>("topLeft");
        const QRect screen(0, 0, 1920, 1080);
        QTest::newRow("beside the pointer") << QPoint(500, 400) << screen << QPoint(512, 408);
        QTest::newRow("bottom-right corner") << QPoint(1919, 1079) << screen << QPoint(1652, 862);
        QTest::newRow("top-left corner") << QPoint(0, 0) << screen << QPoint(12, 8);
        QTest::newRow("above the screen") << QPoint(300, -40) << screen << QPoint(312, 8);
        QTest::newRow("a screen right of the first")
            << QPoint(3000, 10) << QRect(1920, 24, 1280, 1000) << QPoint(2932, 32);
        QTest::newRow("a screen too small: right and bottom win")
            << QPoint(10, 10) << QRect(0, 0, 200, 150) << QPoint(-68, -68);
    }
    void placementStaysInsideTheAvailableArea() {
        QFETCH(QPoint, pointer);
        QFETCH(QRect, available);
        QFETCH(QPoint, topLeft);
        QCOMPARE(HUDWindowController::frameAt(pointer, available),
                 QRect(topLeft, HUDWindowController::kSize));
    }

    void theStoredSecondsSetTheAutoDismiss() {
        QCOMPARE(HUDWindowController::autoDismissMs(0), 7000);
        QCOMPARE(HUDWindowController::autoDismissMs(-3), 7000);
        QCOMPARE(HUDWindowController::autoDismissMs(2.5), 2500);

        HUDWindowController hud(QPoint(400, 300), {}, {0.3, nullptr});
        QSignalSpy closed(&hud, &HUDWindowController::closed);
        hud.showWindow();
        QVERIFY(QTest::qWaitForWindowExposed(hud.window()));
        QTRY_COMPARE(closed.size(), 1);
        QVERIFY(!hud.window()->isVisible());
    }

    void aClickedRowClosesTheHUDThenStartsItsAction() {
        QLineEdit work;  // the window the user works in keeps the keyboard
        showFocused(work);
        int windowPicks = 0;
        HUDWindowController hud(QPoint(400, 300), {{}, [&windowPicks] { ++windowPicks; }, {}}, {});
        QSignalSpy closed(&hud, &HUDWindowController::closed);
        hud.showWindow();
        QVERIFY(QTest::qWaitForWindowExposed(hud.window()));
        QCOMPARE(QApplication::focusWidget(), &work);

        QElapsedTimer clock;
        clock.start();
        QTest::mouseClick(hud.view()->rows().at(1), Qt::LeftButton);
        QVERIFY(hud.isDismissing());
        QCOMPARE(windowPicks, 0);
        QTRY_COMPARE(windowPicks, 1);
        QVERIFY(clock.elapsed() >= HUDWindowController::kActionDelayMs);
        QTRY_COMPARE(closed.size(), 1);
    }

    void aKeyInTheProgramClosesItAndStillArrives() {
        QLineEdit work;
        showFocused(work);
        int actions = 0;
        const auto count = [&actions] { ++actions; };
        HUDWindowController hud(QPoint(400, 300), {count, count, count}, {});
        hud.showWindow();
        QTest::keyClick(&work, Qt::Key_A);
        QVERIFY(hud.isDismissing());
        QCOMPARE(work.text(), QStringLiteral("a"));
        QTest::qWait(HUDWindowController::kActionDelayMs * 2);
        QCOMPARE(actions, 0);
    }

private:
    static void showFocused(QWidget& widget) {
        widget.setGeometry(100, 100, 200, 40);
        widget.show();
        widget.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&widget));
        widget.setFocus();
    }
};

QTEST_MAIN(HUDWindowTest)
#include "hud_window_controller_test.moc"
