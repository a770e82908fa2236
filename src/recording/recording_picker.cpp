// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "recording/recording_picker.h"

#include <QCoreApplication>
#include <QCursor>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QScreen>
#include <QThread>
#include <QTimer>
#include <cmath>

#include "library/screenshot_store.h"
#include "platform/window_list.h"
#include "recording/recording_status_panel.h"
#include "recording/video_recorder.h"
#include "widgets/window_pick_session.h"

Q_DECLARE_LOGGING_CATEGORY(lcRecording)

namespace {

// Long enough for the outline (and anything else of ours) to have left the
// screen before the first picture is grabbed.
constexpr int kStartDelayMs = 400;
constexpr int kQuitPollMs = 10;

class SharedVideoRecorder : public RecordingPicker::Recorder {
public:
    void setOnFinished(std::function<void(const QString& path)> callback) override {
        VideoRecorder::shared().setOnFinished(std::move(callback));
    }
    void start(QScreen& display, const std::optional<QRect>& area) override {
        VideoRecorder::shared().start(display, area);
    }
    void stop() override { VideoRecorder::shared().stop(); }
    bool isRecording() const override { return VideoRecorder::shared().isRecording(); }
    bool isFinishing() const override { return VideoRecorder::shared().isFinishing(); }
};

QScreen* screenUnderPointer() {
    QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    return screen != nullptr ? screen : QGuiApplication::primaryScreen();
}

QScreen* screenNamed(const QString& name) {
    for (QScreen* screen : QGuiApplication::screens()) {
        if (screen->name() == name) {
            return screen;
        }
    }
    return screenUnderPointer();
}

// A frame in desktop pixels as the screen's logical coordinates: Qt keeps a
// screen's origin in device pixels and scales only distances within it.
QRect logicalFrame(const QScreen& screen, const QRect& frame) {
    const double ratio = screen.devicePixelRatio();
    const QPoint origin = screen.geometry().topLeft();
    const QPoint offset = frame.topLeft() - origin;
    return {origin + QPoint(static_cast<int>(std::lround(offset.x() / ratio)),
                            static_cast<int>(std::lround(offset.y() / ratio))),
            QSize(static_cast<int>(std::lround(frame.width() / ratio)),
                  static_cast<int>(std::lround(frame.height() / ratio)))};
}

RecordingPicker::Dependencies programDependencies() {
    return {std::make_unique<SharedVideoRecorder>(),
            [](const QString& path) { ScreenshotStore::shared().insertNewCapture(path); },
            &screenUnderPointer,
            [] { return std::make_unique<WindowPickSession>(OutlineStyle::recordingTarget()); }};
}

}  // namespace

RecordingPicker& RecordingPicker::shared() {
    // Never destroyed: finishBeforeQuit() leaves nothing of it on screen.
    static auto* picker = new RecordingPicker(programDependencies());
    return *picker;
}

RecordingPicker::RecordingPicker(Dependencies dependencies, QObject* parent)
    : QObject(parent), dependencies_(std::move(dependencies)) {}

RecordingPicker::~RecordingPicker() = default;

void RecordingPicker::pickWindowToRecord() {
    if (state_ != State::idle) {
        qCDebug(lcRecording) << "not idle: the window pick is ignored";
        return;
    }
    qCDebug(lcRecording) << "picking a window to record";
    state_ = State::picking;
    session_ = dependencies_.createPickSession();
    connect(session_.get(), &WindowPickSession::picked, this, &RecordingPicker::windowPicked);
    connect(session_.get(), &WindowPickSession::cancelled, this, &RecordingPicker::pickCancelled);
    session_->start();
}

void RecordingPicker::recordFullScreen() {
    if (state_ != State::idle) {
        qCDebug(lcRecording) << "not idle: the screen recording is ignored";
        return;
    }
    QScreen* screen = dependencies_.screenForFullScreen();
    if (screen == nullptr) {
        qCWarning(lcRecording).noquote() << QStringLiteral("Quillix: no screen to record");
        return;
    }
    state_ = State::recording;
    startAfterDelay(*screen, std::nullopt);
}

void RecordingPicker::windowPicked(const WindowInfo& window) {
    if (state_ != State::picking) {
        return;
    }
    endPickSession();
    state_ = State::recording;
    QScreen* screen = screenNamed(window.displayName);
    if (screen == nullptr) {
        state_ = State::idle;
        return;
    }
    startAfterDelay(*screen, logicalFrame(*screen, window.frame));
}

void RecordingPicker::pickCancelled() {
    if (state_ != State::picking) {
        return;
    }
    endPickSession();
    state_ = State::idle;
    qCDebug(lcRecording) << "window pick cancelled";
}

void RecordingPicker::endPickSession() {
    // The session is still inside the signal that brought us here.
    if (session_ != nullptr) {
        session_->disconnect(this);
        session_.release()->deleteLater();
    }
}

void RecordingPicker::startAfterDelay(QScreen& display, const std::optional<QRect>& area) {
    const int attempt = ++attempt_;
    QTimer::singleShot(
        kStartDelayMs, this, [this, attempt, screen = QPointer<QScreen>(&display), area] {
            if (state_ != State::recording || attempt != attempt_) {
                return;  // given up during the pause
            }
            QScreen* target = screen != nullptr ? screen.data() : QGuiApplication::primaryScreen();
            if (target != nullptr) {
                startNow(*target, area);
            }
        });
}

void RecordingPicker::startNow(QScreen& display, const std::optional<QRect>& area) {
    Recorder& recorder = *dependencies_.recorder;
    recorder.setOnFinished([picker = QPointer<RecordingPicker>(this)](const QString& path) {
        if (picker != nullptr) {
            picker->recordingFinished(path);
        }
    });
    recorder.start(display, area);
    // Shown even when the recorder refused: its clock stays at 0:00 and Stop
    // ends the attempt.
    panel_ = std::make_unique<RecordingStatusPanel>([&recorder] { return recorder.isRecording(); },
                                                    [this] { stopRecording(); });
    panel_->showOn(display.geometry());
}

void RecordingPicker::stopRecording() {
    if (state_ != State::recording) {
        return;
    }
    dropPanel();
    state_ = State::idle;
    ++attempt_;
    dependencies_.recorder->stop();
}

void RecordingPicker::finishBeforeQuit() {
    if (state_ == State::picking) {
        session_->stop();
        endPickSession();
        state_ = State::idle;
    }
    stopRecording();
    // The file is finished on a worker that reports back through the event
    // queue; the program's own loop has already ended.
    while (dependencies_.recorder->isFinishing()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, kQuitPollMs);
        QThread::msleep(kQuitPollMs);
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void RecordingPicker::recordingFinished(const QString& path) {
    // A file finished after Stop arrives while idle, or even while the next
    // recording runs: only a panel of the recording that ended goes.
    if (state_ == State::recording && !dependencies_.recorder->isRecording()) {
        dropPanel();
        state_ = State::idle;
    }
    dependencies_.insertFinished(path);
}

void RecordingPicker::dropPanel() {
    if (panel_ != nullptr) {
        panel_->hide();
        // The panel's Stop button may be what called us.
        panel_.release()->deleteLater();
    }
}
