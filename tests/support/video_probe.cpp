// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "support/video_probe.h"

#include <QProcess>
#include <QTemporaryDir>

namespace {

struct Output {
    bool ok = false;
    QByteArray out;
    QByteArray err;
};

Output run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    Output output;
    output.ok = process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit &&
                process.exitCode() == 0;
    output.out = process.readAllStandardOutput();
    output.err = process.readAllStandardError();
    return output;
}

}  // namespace

VideoProbe probeVideo(const QString& path) {
    const Output output =
        run(QStringLiteral("ffprobe"),
            {"-v", "error", "-count_frames", "-select_streams", "v:0", "-show_entries",
             "stream=codec_name,pix_fmt,width,height,avg_frame_rate,nb_read_frames,duration", "-of",
             "default=noprint_wrappers=1", path});
    VideoProbe probe;
    probe.errors = QString::fromUtf8(output.err);
    for (const QByteArray& line : output.out.split('\n')) {
        const qsizetype equals = line.indexOf('=');
        const QByteArray key = line.left(equals);
        const QString value = QString::fromUtf8(line.mid(equals + 1));
        if (key == "codec_name") {
            probe.codec = value;
        } else if (key == "pix_fmt") {
            probe.pixelFormat = value;
        } else if (key == "width") {
            probe.width = value.toInt();
        } else if (key == "height") {
            probe.height = value.toInt();
        } else if (key == "avg_frame_rate") {
            probe.averageFrameRate = value;
        } else if (key == "nb_read_frames") {
            probe.frames = value.toLongLong();
        } else if (key == "duration") {
            probe.duration = value.toDouble();
        }
    }
    probe.ok = output.ok && !probe.codec.isEmpty();
    return probe;
}

QImage decodeVideoFrame(const QString& path, int index) {
    QTemporaryDir folder;
    const QString picture = folder.filePath(QStringLiteral("frame.png"));
    const Output output =
        run(QStringLiteral("ffmpeg"),
            {"-v", "error", "-y", "-i", path, "-vf", QStringLiteral("select=eq(n\\,%1)").arg(index),
             "-frames:v", "1", picture});
    return output.ok ? QImage(picture) : QImage();
}
