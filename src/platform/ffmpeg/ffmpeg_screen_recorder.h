// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QByteArray>

#include "platform/screen_recorder_backend.h"

// Screen recording on X11 through FFmpeg's libraries: libavdevice's x11grab
// grabs the area 30 times a second with the pointer drawn (shared memory,
// XFixes cursor), libswscale converts each picture to YUV 4:2:0, libx264
// encodes it and libavformat writes MP4.
//
// Grabbing and encoding run on threads of their own; a BoundedFrameQueue
// between them drops a picture the encoder cannot take yet rather than
// queueing it. The encoder puts the pictures on a ConstantRateTimeline, so
// the file has exactly 30 frames per second of recording, repeating the last
// picture over gaps.
//
// While recording the file is a fragmented MP4 (a fragment per key frame,
// one every 2 s), which stays playable up to its last complete fragment if
// the program is killed. Stopping finishes the encoder and rewrites the
// file as an ordinary MP4 with its index in front, on a worker thread.
class FfmpegScreenRecorder : public ScreenRecorderBackend {
public:
    // The x264 speed preset. "ultrafast" keeps up with a busy 1080p screen
    // at 30 frames per second on two shared cores, at half the CPU time and
    // memory of "veryfast" (which falls behind there: bench_recording);
    // screen content is mostly still, where the faster preset loses little.
    static constexpr const char* kEncoderPreset = "ultrafast";
    // x264 runs 1.5 threads per core, each holding pictures: capped, so a
    // many-core machine does not pay hundreds of megabytes for speed it
    // does not need.
    static constexpr int kMaxEncoderThreads = 4;
    static constexpr int kKeyFrameIntervalFrames = 2 * kFramesPerSecond;

    // `displayName`: the X display to grab from, e.g. ":0".
    explicit FfmpegScreenRecorder(const QByteArray& displayName);

    std::unique_ptr<ScreenRecording> start(const ScreenRecordingRequest& request,
                                           ScreenRecordingStartError* error) override;

private:
    QByteArray displayName_;
};
