// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "recording/window_picker.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QtTest>

#include "support/pick_fakes.h"
#include "widgets/window_outline.h"
#include "widgets/window_pick_session.h"

// What a click, Escape and a second start do to a window screenshot pick,
// with a fake pointer; the real grab and outline have the pick session's
// own tests.
class FakePointerWindowPickerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        windows_.window = {77, QRect(100, 100, 400, 300), QStringLiteral("test_window"), {}};
        captured_.clear();
        sessions_ = 0;
        picker_ = std::make_unique<WindowPicker>(WindowPicker::Dependencies{
            [this] {
                auto pointer = std::make_unique<FakePointerPicker>();
                pointer_ = pointer.get();
                ++sessions_;
                return std::make_unique<WindowPickSession>(OutlineStyle::captureTarget(),
                                                           std::move(pointer), &windows_);
            },
            [this](quint32 windowId) {
                captured_.append(windowId);
                outlineAtCapture_ = outlineShown();
            }});
    }
    void cleanup() { picker_.reset(); }

    void aClickCapturesTheWindowOnceTheOutlineHasGone() {
        picker_->startPicking();
        Q_EMIT pointer_->clicked(QPoint(20, 20));  // the bare desktop
        QTest::qWait(50);
        QVERIFY(picker_->isActive());
        Q_EMIT pointer_->moved(QPoint(200, 200));
        QTRY_COMPARE(picker_->hoveredWindowID(), std::optional<quint32>(77));
        QVERIFY(outlineShown());

        QElapsedTimer clock;
        clock.start();
        Q_EMIT pointer_->clicked(QPoint(200, 200));
        QTRY_VERIFY(!picker_->isActive());
        QCOMPARE(captured_.size(), 0);  // not yet: the outline is leaving
        QTRY_COMPARE(captured_, QList<quint32>{77});
        QVERIFY(clock.elapsed() >= WindowPicker::kCaptureDelayMs);
        QVERIFY(!outlineAtCapture_);
    }

    void escapeAndStopLeaveNothingAndCaptureNothing() {
        picker_->startPicking();
        Q_EMIT pointer_->moved(QPoint(200, 200));
        QTRY_VERIFY(outlineShown());
        Q_EMIT pointer_->escapePressed();
        QTRY_VERIFY(!picker_->isActive());
        QVERIFY(!outlineShown());

        picker_->startPicking();
        picker_->capturePick();  // nothing hovered yet
        QVERIFY(picker_->isActive());
        picker_->stopPicking();
        QTest::qWait(WindowPicker::kCaptureDelayMs * 2);
        QVERIFY(captured_.isEmpty());
        QVERIFY(!picker_->hoveredWindowID());
    }

    void startingAgainRestartsWithOneSession() {
        picker_->startPicking();
        Q_EMIT pointer_->moved(QPoint(200, 200));
        QTRY_VERIFY(outlineShown());
        picker_->startPicking();
        QCOMPARE(sessions_, 2);
        QVERIFY(!outlineShown());  // the first session's outline is gone
        Q_EMIT pointer_->moved(QPoint(210, 210));
        QTRY_VERIFY(outlineShown());
        picker_->capturePick();
        QTRY_COMPARE(captured_, QList<quint32>{77});
    }

private:
    OneWindow windows_;
    FakePointerPicker* pointer_ = nullptr;
    std::unique_ptr<WindowPicker> picker_;
    QList<quint32> captured_;
    bool outlineAtCapture_ = true;
    int sessions_ = 0;
};

QTEST_MAIN(FakePointerWindowPickerTest)
#include "window_picker_test.moc"
