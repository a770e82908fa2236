// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// Records an area of the screen until it is killed, for the test of what a
// killed recording leaves behind:
//   recording_kill_helper FILE X Y WIDTH HEIGHT
// Prints "recording" once the recording runs.
#include <QByteArray>
#include <QString>
#include <chrono>
#include <cstdio>
#include <thread>

#include "platform/ffmpeg/ffmpeg_screen_recorder.h"

int main(int argc, char** argv) {
    if (argc != 6) {
        std::fputs("usage: recording_kill_helper FILE X Y WIDTH HEIGHT\n", stderr);
        return 2;
    }
    const QRect area(QByteArray(argv[2]).toInt(), QByteArray(argv[3]).toInt(),
                     QByteArray(argv[4]).toInt(), QByteArray(argv[5]).toInt());
    FfmpegScreenRecorder recorder(qgetenv("DISPLAY"));
    ScreenRecordingStartError error;
    const std::unique_ptr<ScreenRecording> recording = recorder.start(
        {area, QString::fromLocal8Bit(argv[1]), qint64{2} * area.width() * area.height()}, &error);
    if (!recording) {
        std::fprintf(stderr, "cannot record: %s\n", error.reason.toLocal8Bit().constData());
        return 1;
    }
    std::puts("recording");
    std::fflush(stdout);
    for (;;) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
    }
}
