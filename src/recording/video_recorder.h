// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QDateTime>
#include <QObject>
#include <QRect>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QScreen;
class ScreenRecorderBackend;
class ScreenRecording;
class SoundPlayer;
struct ScreenRecordingResult;

// Records one screen, or a rectangle of it, to an H.264 MP4 file on the
// Desktop: "Recording_<seconds since 1970>.mp4", never in the custom save
// folder. The file's time line begins with the first grabbed picture and
// has 30 frames per second; an odd width or height is padded by one edge
// pixel. When the file is complete the shutter sound plays and onFinished
// receives its path; a recording stopped before its first picture leaves no
// file and calls nothing.
//
// GUI thread only. Grabbing, encoding and finishing the file run on threads
// of the back end's own, which all end once the file is finished: between
// recordings nothing runs. A new recording may start while the previous file
// is still being finished. Every outcome is a "[VideoRecorder] " line in the
// log category "quillix.recording"; the user sees no dialog.
class VideoRecorder : public QObject {
    Q_OBJECT
public:
    using FinishedCallback = std::function<void(const QString& path)>;

    struct Dependencies {
        // Nothing where the screen cannot be recorded (not an X11 session).
        ScreenRecorderBackend* backend = nullptr;
        SoundPlayer& sounds;
        QString desktopFolder;  // created when missing
    };

    // The program's recorder: the platform's back end, sounds and Desktop.
    static VideoRecorder& shared();

    explicit VideoRecorder(const Dependencies& dependencies, QObject* parent = nullptr);
    // Waits for files still being finished, so none is left half-written.
    ~VideoRecorder() override;

    VideoRecorder(const VideoRecorder&) = delete;
    VideoRecorder& operator=(const VideoRecorder&) = delete;

    // "Recording_1764067200.mp4": whole seconds since 1970, the fraction cut off.
    static QString recordingFileName(const QDateTime& instant);

    // Starts recording `display`, or only `area` of it: a rectangle in the
    // desktop's coordinates (as QWidget::frameGeometry gives them), cut to
    // the display. Does nothing while recording. Failures are logged and
    // leave the recorder idle.
    void start(QScreen& display, const std::optional<QRect>& area = std::nullopt);

    // Ends the recording; the file is finished on a worker thread and
    // onFinished then receives its path on the GUI thread. Does nothing
    // when not recording.
    void stop();

    // Called with the path of each complete file. Set it before start().
    void setOnFinished(FinishedCallback callback) { onFinished_ = std::move(callback); }

    // From a successful start() until stop().
    bool isRecording() const { return recording_ != nullptr; }
    // Whether a stopped recording's file is still being finished.
    bool isFinishing() const { return !finishing_.empty(); }

private:
    QString takeOutputPath(const QDateTime& now) const;
    void finished(const ScreenRecording* recording, const ScreenRecordingResult& result);

    Dependencies dependencies_;
    FinishedCallback onFinished_;
    std::unique_ptr<ScreenRecording> recording_;
    QString outputPath_;
    // Stopped recordings whose files are being finished, with their paths.
    std::vector<std::pair<std::unique_ptr<ScreenRecording>, QString>> finishing_;
};
