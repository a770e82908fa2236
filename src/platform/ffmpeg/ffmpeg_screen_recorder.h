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
    // The x264 speed preset: fast enough to keep up with 1080p at 30 frames
    // per second on two laptop cores while other programs run.
    static constexpr const char* kEncoderPreset = "veryfast";
    static constexpr int kKeyFrameIntervalFrames = 2 * kFramesPerSecond;

    // `displayName`: the X display to grab from, e.g. ":0".
    explicit FfmpegScreenRecorder(const QByteArray& displayName);

    std::unique_ptr<ScreenRecording> start(const ScreenRecordingRequest& request,
                                           ScreenRecordingStartError* error) override;

private:
    QByteArray displayName_;
};
