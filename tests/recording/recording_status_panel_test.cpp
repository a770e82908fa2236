// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "recording/recording_status_panel.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QtTest>

#include "support/x11_test_desktop.h"

namespace {

const QRect kScreen(0, 0, 1920, 1080);

int redPixels(QWidget& widget) {
    const QImage image = widget.grab().toImage();
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            count += pixel.red() > 200 && pixel.green() < 120 && pixel.blue() < 120 ? 1 : 0;
        }
    }
    return count;
}

}  // namespace

class RecordingStatusPanelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theClockShowsMinutesAndSecondsAndStopsWithTheRecorder() {
        bool recording = true;
        RecordingStatusPanel panel([&recording] { return recording; }, [] {});
        QCOMPARE(panel.elapsedText(), QStringLiteral("0:00"));
        for (int second = 0; second < 59; ++second) {
            panel.tick();
        }
        QCOMPARE(panel.elapsedText(), QStringLiteral("0:59"));
        panel.tick();
        QCOMPARE(panel.elapsedText(), QStringLiteral("1:00"));
        for (int second = 60; second < 600; ++second) {
            panel.tick();
        }
        QCOMPARE(panel.elapsedText(), QStringLiteral("10:00"));
        QCOMPARE(RecordingStatusPanel::formatElapsed(3 * 3600 + 5), QStringLiteral("180:05"));

        panel.showOn(kScreen);
        QVERIFY(panel.clockRunning());
        recording = false;
        panel.tick();
        QVERIFY(!panel.clockRunning());
        QCOMPARE(panel.elapsedSeconds(), 600);
        // Hidden, nothing keeps ticking.
        panel.hide();
        QVERIFY(!panel.clockRunning());
    }

    void itSitsAtTheTopCentreOfTheRecordedScreen() {
        QCOMPARE(RecordingStatusPanel::placement(kScreen), QRect(850, 60, 220, 44));
        QCOMPARE(RecordingStatusPanel::placement({1920, 0, 1280, 1024}), QRect(2450, 60, 220, 44));
        RecordingStatusPanel panel([] { return true; }, [] {});
        panel.showOn(kScreen);
        QVERIFY(QTest::qWaitForWindowExposed(&panel));
        QTRY_COMPARE(desktop_.viewableRect(quint32(panel.winId())), QRect(850, 60, 220, 44));
    }

    void everyControlIsNamedAndTheDotPulses() {
        RecordingStatusPanel panel([] { return true; }, [] {});
        panel.showOn(kScreen);
        QVERIFY(QTest::qWaitForWindowExposed(&panel));
        QCOMPARE(panel.accessibleName(), QStringLiteral("Recording"));
        for (QWidget* child : panel.findChildren<QWidget*>()) {
            QVERIFY2(!child->accessibleName().isEmpty(), child->metaObject()->className());
        }
        QCOMPARE(panel.findChild<QPushButton*>()->accessibleName(), QStringLiteral("Stop"));

        QWidget* dot = nullptr;
        for (QWidget* child : panel.findChildren<QWidget*>()) {
            if (child->accessibleName() == QStringLiteral("Recording indicator")) {
                dot = child;
            }
        }
        QVERIFY(dot != nullptr);
        // Over one pulse the dot grows from 8 pixels to 10 and back.
        int smallest = std::numeric_limits<int>::max();
        int largest = 0;
        for (int sample = 0; sample < 15; ++sample) {
            const int red = redPixels(*dot);
            smallest = std::min(smallest, red);
            largest = std::max(largest, red);
            QTest::qWait(100);
        }
        QVERIFY2(smallest >= 40 && smallest <= 60, qPrintable(QString::number(smallest)));
        QVERIFY2(largest >= 68 && largest <= 90, qPrintable(QString::number(largest)));
    }

    void stopIsClickedWithoutTakingTheFocus() {
        int stops = 0;
        RecordingStatusPanel panel([] { return true; }, [&stops] { ++stops; });
        const quint32 worked = desktop_.openWindow({400, 400, 500, 300}, "gray", "Worked window");
        QVERIFY(worked != 0);
        X11TestDesktop::xdotool({"windowactivate", "--sync", QString::number(worked)});
        QTRY_COMPARE(desktop_.activeWindow(), worked);

        panel.showOn(kScreen);
        QVERIFY(QTest::qWaitForWindowExposed(&panel));
        QTest::qWait(100);
        QCOMPARE(desktop_.activeWindow(), worked);

        auto* stop = panel.findChild<QPushButton*>();
        // Clicked where the X server has it, as a user would.
        const QPoint button =
            desktop_.viewableRect(quint32(panel.winId())).topLeft() + stop->geometry().center();
        X11TestDesktop::xdotool(
            {"mousemove", QString::number(button.x()), QString::number(button.y()), "click", "1"});
        QTRY_COMPARE(stops, 1);
        QTest::qWait(100);
        QCOMPARE(desktop_.activeWindow(), worked);
        QCOMPARE(QGuiApplication::focusWindow(), nullptr);
        desktop_.closeAll();
    }

private:
    X11TestDesktop desktop_;
};

QTEST_MAIN(RecordingStatusPanelTest)
#include "recording_status_panel_test.moc"
