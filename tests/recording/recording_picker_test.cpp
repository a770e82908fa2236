// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "recording/recording_picker.h"

#include <QApplication>
#include <QGuiApplication>
#include <QPushButton>
#include <QScreen>
#include <QtTest>

#include "recording/recording_status_panel.h"
#include "support/pick_fakes.h"
#include "widgets/window_outline.h"
#include "widgets/window_pick_session.h"

namespace {

// Records nothing: remembers what it was asked, and finishes a file when
// the test says so. The real recorder has tests of its own.
class FakeRecorder : public RecordingPicker::Recorder {
public:
    struct Start {
        QString screen;
        std::optional<QRect> area;
    };

    void setOnFinished(std::function<void(const QString&)> callback) override {
        onFinished = std::move(callback);
    }
    void start(QScreen& display, const std::optional<QRect>& area) override {
        starts.push_back({display.name(), area});
        recording = !refuses;
    }
    void stop() override {
        ++stops;
        recording = false;
    }
    bool isRecording() const override { return recording; }
    bool isFinishing() const override { return false; }
    // The recording has ended (by stop() or by itself) and its file is
    // complete.
    void finish(const QString& path) {
        recording = false;
        onFinished(path);
    }

    std::function<void(const QString&)> onFinished;
    std::vector<Start> starts;
    int stops = 0;
    bool recording = false;
    bool refuses = false;
};

}  // namespace

// The picker's states with a fake recorder and a fake pointer: what each
// hotkey, click, Escape, Stop and finished file does in each state.
class FakeRecorderPickerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        auto recorder = std::make_unique<FakeRecorder>();
        recorder_ = recorder.get();
        screen_ = QGuiApplication::primaryScreen();
        windows_.window = {42, QRect(100, 120, 640, 360), QStringLiteral("test_window"),
                           screen_->name()};
        inserted_.clear();
        pointer_ = nullptr;
        picker_ = std::make_unique<RecordingPicker>(RecordingPicker::Dependencies{
            std::move(recorder), [this](const QString& path) { inserted_.append(path); },
            [this] { return screen_.data(); },
            [this] {
                auto pointer = std::make_unique<FakePointerPicker>();
                pointer_ = pointer.get();
                return std::make_unique<WindowPickSession>(OutlineStyle::recordingTarget(),
                                                           std::move(pointer), &windows_);
            }});
    }
    void cleanup() { picker_.reset(); }

    void aWindowIsPickedAndRecordedAfterThePause() {
        picker_->pickWindowToRecord();
        QCOMPARE(picker_->state(), RecordingPicker::State::picking);
        Q_EMIT pointer_->moved(QPoint(300, 300));
        QTRY_VERIFY(outlineShown());

        picker_->pickWindowToRecord();  // a second press while picking
        picker_->recordFullScreen();
        QCOMPARE(picker_->state(), RecordingPicker::State::picking);

        Q_EMIT pointer_->clicked(QPoint(300, 300));
        QTRY_COMPARE(picker_->state(), RecordingPicker::State::recording);
        QTRY_VERIFY(!outlineShown());
        QTest::qWait(250);
        QVERIFY(recorder_->starts.empty());  // the pause is not over
        QTRY_COMPARE(recorder_->starts.size(), size_t(1));
        QCOMPARE(recorder_->starts[0].screen, screen_->name());
        const qreal ratio = screen_->devicePixelRatio();
        QCOMPARE(recorder_->starts[0].area,
                 QRect(QPoint(100, 120), (QSizeF(640, 360) / ratio).toSize()));
        QVERIFY(picker_->statusPanel() != nullptr && picker_->statusPanel()->isVisible());

        recorder_->finish(QStringLiteral("/tmp/Recording_1.mp4"));
        QCOMPARE(picker_->state(), RecordingPicker::State::idle);
        QTRY_VERIFY(picker_->statusPanel() == nullptr);
        QCOMPARE(inserted_, QStringList{QStringLiteral("/tmp/Recording_1.mp4")});
    }

    void escapeLeavesNothingAndRecordsNothing() {
        picker_->pickWindowToRecord();
        Q_EMIT pointer_->moved(QPoint(300, 300));
        QTRY_VERIFY(outlineShown());
        Q_EMIT pointer_->escapePressed();
        QTRY_COMPARE(picker_->state(), RecordingPicker::State::idle);
        QTRY_VERIFY(!outlineShown());
        QTest::qWait(600);
        QVERIFY(recorder_->starts.empty());
        QVERIFY(picker_->statusPanel() == nullptr);

        picker_->pickWindowToRecord();  // picking again works
        QCOMPARE(picker_->state(), RecordingPicker::State::picking);
    }

    void theScreenIsRecordedUntilStopAndPressesMeanwhileAreIgnored() {
        picker_->recordFullScreen();
        QCOMPARE(picker_->state(), RecordingPicker::State::recording);
        QTRY_COMPARE(recorder_->starts.size(), size_t(1));
        QCOMPARE(recorder_->starts[0].area, std::nullopt);
        RecordingStatusPanel* panel = picker_->statusPanel();
        QVERIFY(panel != nullptr);
        QTRY_VERIFY(panel->isVisible());
        QCOMPARE(panel->geometry(), RecordingStatusPanel::placement(screen_->geometry()));

        picker_->recordFullScreen();
        picker_->pickWindowToRecord();
        QTest::qWait(600);
        QCOMPARE(recorder_->starts.size(), size_t(1));
        QCOMPARE(pointer_, nullptr);  // no pick session was made

        QPointer<RecordingStatusPanel> watched(panel);
        QTest::mouseClick(panel->findChild<QPushButton*>(), Qt::LeftButton);
        QCOMPARE(picker_->state(), RecordingPicker::State::idle);
        QCOMPARE(recorder_->stops, 1);
        QTRY_VERIFY(watched.isNull());

        // The next recording may start while the file is being finished;
        // that file is listed and the new recording goes on.
        picker_->recordFullScreen();
        QTRY_COMPARE(recorder_->starts.size(), size_t(2));
        recorder_->onFinished(QStringLiteral("/tmp/Recording_2.mp4"));
        QCOMPARE(inserted_, QStringList{QStringLiteral("/tmp/Recording_2.mp4")});
        QCOMPARE(picker_->state(), RecordingPicker::State::recording);
        QVERIFY(picker_->statusPanel() != nullptr);
    }

    void aRefusedStartKeepsThePanelUntilStop() {
        recorder_->refuses = true;
        picker_->recordFullScreen();
        QTRY_COMPARE(recorder_->starts.size(), size_t(1));
        QVERIFY(picker_->statusPanel() != nullptr);
        QTRY_VERIFY(picker_->statusPanel()->isVisible());
        QTest::qWait(1200);
        QCOMPARE(picker_->state(), RecordingPicker::State::recording);
        QCOMPARE(picker_->statusPanel()->elapsedText(), QStringLiteral("0:00"));

        picker_->stopRecording();
        QCOMPARE(picker_->state(), RecordingPicker::State::idle);
        recorder_->refuses = false;
        picker_->recordFullScreen();  // and a new recording starts
        QTRY_COMPARE(recorder_->starts.size(), size_t(2));
        QVERIFY(recorder_->recording);
    }

    void stopDuringThePauseStartsNothingAndAQuitFinishesAPick() {
        picker_->recordFullScreen();
        picker_->finishBeforeQuit();
        QCOMPARE(picker_->state(), RecordingPicker::State::idle);
        QTest::qWait(600);
        QVERIFY(recorder_->starts.empty());

        picker_->pickWindowToRecord();
        Q_EMIT pointer_->moved(QPoint(300, 300));
        QTRY_VERIFY(outlineShown());
        const QPointer<PointerPicker> pointer(pointer_);
        picker_->finishBeforeQuit();
        QCOMPARE(picker_->state(), RecordingPicker::State::idle);
        QVERIFY(!outlineShown());
        QVERIFY(pointer.isNull());  // the session and its grab are gone
    }

private:
    std::unique_ptr<RecordingPicker> picker_;
    FakeRecorder* recorder_ = nullptr;
    FakePointerPicker* pointer_ = nullptr;
    OneWindow windows_;
    QPointer<QScreen> screen_;
    QStringList inserted_;
};

QTEST_MAIN(FakeRecorderPickerTest)
#include "recording_picker_test.moc"
