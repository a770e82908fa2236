// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QImage>
#include <QString>

// What ffprobe says about the first video stream of a file (frames counted
// by decoding them all).
struct VideoProbe {
    bool ok = false;
    QString codec;
    QString pixelFormat;
    int width = 0;
    int height = 0;
    QString averageFrameRate;  // "30/1"
    qint64 frames = 0;
    double duration = 0;  // seconds
    QString errors;       // what the decoder complained about
};

VideoProbe probeVideo(const QString& path);

// Frame `index` of the file, decoded by the ffmpeg command line; a null
// image when there is none.
QImage decodeVideoFrame(const QString& path, int index);
