// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "recording/video_recorder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QScreen>
#include <QStandardPaths>
#include <algorithm>
#include <cmath>
#include <utility>

#include "library/capture_file_writer.h"
#include "platform/platform_services.h"
#include "platform/screen_recorder_backend.h"
#include "platform/sound_player.h"

Q_LOGGING_CATEGORY(lcRecording, "quillix.recording")

namespace {

// Past this many recordings in one second something else is wrong.
constexpr int kMaxNumberedNames = 100;

QString sizeText(const QSize& size) {
    return QStringLiteral("%1×%2").arg(size.width()).arg(size.height());
}

// The part of `display` to record, in the desktop's coordinates: the whole
// display, or `area` cut to it (a window partly off screen records what the
// screen shows of it).
QRect recordedArea(const QScreen& display, const std::optional<QRect>& area) {
    const QRect bounds = display.geometry();
    return area ? area->intersected(bounds) : bounds;
}

// The same rectangle in the X server's pixels. Qt keeps a screen's origin
// in device pixels and scales only distances within it.
QRect devicePixels(const QScreen& display, const QRect& area) {
    const double ratio = display.devicePixelRatio();
    const QPoint origin = display.geometry().topLeft();
    const QPoint offset = area.topLeft() - origin;
    return {origin + QPoint(static_cast<int>(std::lround(offset.x() * ratio)),
                            static_cast<int>(std::lround(offset.y() * ratio))),
            QSize(static_cast<int>(std::lround(area.width() * ratio)),
                  static_cast<int>(std::lround(area.height() * ratio)))};
}

void logStartFailure(const ScreenRecordingStartError& error) {
    switch (error.failure) {
        case ScreenRecordingFailure::outputFile:
            qCWarning(lcRecording).noquote() << "[VideoRecorder] Failed to create AVAssetWriter";
            break;
        case ScreenRecordingFailure::screenInput:
            qCWarning(lcRecording).noquote()
                << "[VideoRecorder] Failed to create AVCaptureScreenInput";
            qCWarning(lcRecording).noquote() << QStringLiteral(
                "→ Make sure Quillix runs in an X11 session whose screen this user may read "
                "(DISPLAY set, the X server accepting the connection)");
            break;
        case ScreenRecordingFailure::inputFormat:
            qCWarning(lcRecording).noquote() << "[VideoRecorder] Cannot add screen input";
            break;
        case ScreenRecordingFailure::encoder:
            qCWarning(lcRecording).noquote() << "[VideoRecorder] Cannot add video output";
            break;
    }
    qCWarning(lcRecording).noquote() << QStringLiteral("→ ") + error.reason;
}

}  // namespace

VideoRecorder& VideoRecorder::shared() {
    static auto* recorder = new VideoRecorder(Dependencies{
        PlatformServices::instance().screenRecorder(),
        PlatformServices::instance().soundPlayer(),
        QStandardPaths::writableLocation(QStandardPaths::DesktopLocation),
    });
    return *recorder;
}

VideoRecorder::VideoRecorder(const Dependencies& dependencies, QObject* parent)
    : QObject(parent), dependencies_(dependencies) {}

VideoRecorder::~VideoRecorder() {
    // Destroying a recording finishes its file first; no callback runs.
    recording_.reset();
    finishing_.clear();
}

QString VideoRecorder::recordingFileName(const QDateTime& instant) {
    return QStringLiteral("Recording_%1.mp4").arg(instant.toSecsSinceEpoch());
}

// The file for a recording starting now. A file of that name left from
// before is replaced; one still being finished by an earlier recording of
// this second is not touched, and the new recording takes a numbered name.
QString VideoRecorder::takeOutputPath(const QDateTime& now) const {
    const QDir desktop(dependencies_.desktopFolder);
    desktop.mkpath(QStringLiteral("."));
    const QString name = recordingFileName(now);
    for (int number = 1; number <= kMaxNumberedNames; ++number) {
        QString path = desktop.filePath(numberedCaptureName(name, number));
        const bool inUse = std::any_of(finishing_.begin(), finishing_.end(),
                                       [&](const auto& entry) { return entry.second == path; });
        if (!inUse) {
            QFile::remove(path);
            return path;
        }
    }
    return desktop.filePath(name);
}

void VideoRecorder::start(QScreen& display, const std::optional<QRect>& area) {
    if (isRecording()) {
        return;
    }
    if (dependencies_.backend == nullptr) {
        qCWarning(lcRecording).noquote() << QStringLiteral(
            "[VideoRecorder] Screen Recording permission not yet granted — please log in to an "
            "X11 session: Quillix records the screen through X11 and cannot yet record a "
            "Wayland session");
        return;
    }
    const QString path = takeOutputPath(QDateTime::currentDateTime());
    const QRect logical = recordedArea(display, area);
    if (logical.width() < 1 || logical.height() < 1) {
        qCWarning(lcRecording).noquote()
            << QStringLiteral("[VideoRecorder] Invalid dimensions ") +
                   sizeText({std::max(0, logical.width()), std::max(0, logical.height())});
        return;
    }
    // Two bits per point and second: 8 192 000 bit/s for 2560 × 1600.
    const ScreenRecordingRequest request{devicePixels(display, logical), path,
                                         qint64{2} * logical.width() * logical.height()};
    ScreenRecordingStartError error;
    recording_ = dependencies_.backend->start(request, &error);
    if (!recording_) {
        logStartFailure(error);
        return;
    }
    outputPath_ = path;
    const QString name = QFileInfo(path).fileName();
    qCInfo(lcRecording).noquote() << QStringLiteral("[VideoRecorder] Recording started → %1 (%2)")
                                         .arg(name, sizeText(logical.size()));
    if (recording_->encodedSize() != request.area.size()) {
        qCInfo(lcRecording).noquote()
            << QStringLiteral(
                   "[VideoRecorder] Padding %1 to %2: H.264 needs even sizes, so the edge pixels "
                   "are repeated")
                   .arg(sizeText(request.area.size()), sizeText(recording_->encodedSize()));
    }
}

void VideoRecorder::stop() {
    if (!isRecording()) {
        return;
    }
    ScreenRecording* recording = recording_.get();
    finishing_.emplace_back(std::move(recording_), std::exchange(outputPath_, {}));
    recording->stop(this, [this, recording](const ScreenRecordingResult& result) {
        finished(recording, result);
    });
}

void VideoRecorder::finished(const ScreenRecording* recording,
                             const ScreenRecordingResult& result) {
    // Its threads have all ended: releasing it does not wait.
    std::erase_if(finishing_,
                  [recording](const auto& entry) { return entry.first.get() == recording; });
    const QString name = QFileInfo(result.path).fileName();
    if (result.outcome == ScreenRecordingResult::Outcome::noFrames) {
        qCWarning(lcRecording).noquote() << QStringLiteral(
            "[VideoRecorder] No frames captured — the recording ended before the screen sent "
            "its first picture; record a little longer, and if it keeps happening make sure "
            "Quillix runs in an X11 session");
        return;
    }
    if (!result.finishProblem.isEmpty()) {
        qCWarning(lcRecording).noquote()
            << QStringLiteral(
                   "[VideoRecorder] %1 is kept as recorded (it plays; seeking is slow): %2")
                   .arg(name, result.finishProblem);
    }
    dependencies_.sounds.play(QStringLiteral("camera-shutter"));
    if (onFinished_) {
        onFinished_(result.path);
    }
    qCInfo(lcRecording).noquote() << QStringLiteral("[VideoRecorder] Saved → ") + name;
}
