// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QObject>
#include <QRect>
#include <QSize>
#include <QString>
#include <functional>
#include <memory>

// What one screen recording is asked to write.
struct ScreenRecordingRequest {
    // The part of the screen to record, in the display server's pixels with
    // the origin at the top left of the whole desktop. Must be non-empty and
    // inside the desktop.
    QRect area;
    // The MP4 file to write; an existing file is replaced.
    QString outputPath;
    // Average bit rate of the video, in bits per second.
    qint64 bitRate = 0;
};

// Why a recording could not start, in the order the steps are taken.
enum class ScreenRecordingFailure {
    outputFile,   // the MP4 file could not be created
    screenInput,  // the screen could not be opened for grabbing
    inputFormat,  // the screen delivers pictures the recorder cannot convert
    encoder,      // the H.264 encoder could not be set up
};

struct ScreenRecordingStartError {
    ScreenRecordingFailure failure = ScreenRecordingFailure::outputFile;
    QString reason;  // the library's own words, for the log
};

// Frame counts of one recording. "Captured" frames came from the screen;
// "dropped" ones were grabbed while the encoder was still busy with earlier
// ones (never queued without bound); "repeated" ones fill the time line where
// no fresh picture was at hand, so the file keeps a constant frame rate.
struct ScreenRecordingCounts {
    qint64 captured = 0;
    qint64 dropped = 0;
    qint64 repeated = 0;
    qint64 written = 0;  // frames in the file
};

// How a recording ended, reported once the file is complete.
struct ScreenRecordingResult {
    enum class Outcome {
        saved,     // the file is complete at `path`
        noFrames,  // stopped before the first frame arrived; the file is deleted
    };
    Outcome outcome = Outcome::noFrames;
    QString path;
    ScreenRecordingCounts counts;
    // Set when the file could not be finished in its final form and is kept
    // as it was written while recording (it still plays); empty otherwise.
    QString finishProblem;
};

// One recording that is running: pictures are grabbed and encoded on threads
// of the recording's own while the object lives on the GUI thread.
class ScreenRecording {
public:
    using FinishedCallback = std::function<void(const ScreenRecordingResult&)>;

    virtual ~ScreenRecording() = default;

    // The size of the pictures in the file: the requested area's size, made
    // even where the video format needs it (one pixel of the edge repeated).
    virtual QSize encodedSize() const = 0;

    // Ends grabbing now; the file keeps every moment up to this call. The
    // file is finished on a worker thread, then `finished` runs on the thread
    // of `context` (nothing runs if `context` is gone by then). Call once.
    // The recording's threads are all ended before `finished` runs.
    virtual void stop(QObject* context, FinishedCallback finished) = 0;

    // Counts so far; safe to call at any time from the GUI thread.
    virtual ScreenRecordingCounts counts() const = 0;
};

// Records a part of the screen to an H.264 MP4 file with the pointer drawn,
// at a constant 30 frames per second. One implementation per windowing
// system; chosen in PlatformServices.
class ScreenRecorderBackend {
public:
    static constexpr int kFramesPerSecond = 30;

    virtual ~ScreenRecorderBackend() = default;

    // Starts recording: opens the file, the screen and the encoder, then
    // grabs on a thread of its own. Returns nothing and fills `error` when a
    // step fails (a file already created is deleted again). Cheap enough for
    // the GUI thread: it opens, it does not encode.
    virtual std::unique_ptr<ScreenRecording> start(const ScreenRecordingRequest& request,
                                                   ScreenRecordingStartError* error) = 0;
};
