// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "sample_video.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

bool writeSampleVideo(const QString& path) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QProcess ffmpeg;
    ffmpeg.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    ffmpeg.start(QStringLiteral("ffmpeg"),
                 {"-v", "error", "-y", "-f", "lavfi", "-i", "testsrc=size=320x240:rate=30", "-t",
                  "1", "-pix_fmt", "yuv420p", path});
    return ffmpeg.waitForFinished(60000) && ffmpeg.exitCode() == 0;
}
