// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/ffmpeg/mp4_remux.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cstdio>
#include <memory>

#include "platform/ffmpeg/av_pointers.h"

extern "C" {
#include <libavutil/error.h>
}

namespace {

QString errorText(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return QString::fromUtf8(text);
}

// "/home/u/Desktop/.Recording_1.mp4.faststart": hidden, and not ending in
// .mp4, so the screenshot library never lists the half-written copy.
QString temporaryPathFor(const QString& path) {
    const QFileInfo info(path);
    return info.dir().filePath(QLatin1Char('.') + info.fileName() + QStringLiteral(".faststart"));
}

AvInputPtr openInput(const QByteArray& path, QString* problem) {
    AVFormatContext* context = nullptr;
    int result = avformat_open_input(&context, path.constData(), nullptr, nullptr);
    if (result < 0) {
        *problem = QStringLiteral("cannot open the recording: ") + errorText(result);
        return {};
    }
    AvInputPtr input(context);
    result = avformat_find_stream_info(context, nullptr);
    if (result < 0) {
        *problem = QStringLiteral("cannot read the recording: ") + errorText(result);
        return {};
    }
    return input;
}

// An output with one stream per input stream, header written.
AvOutputPtr openOutput(const QByteArray& path, const AVFormatContext& input, QString* problem) {
    AVFormatContext* context = nullptr;
    int result = avformat_alloc_output_context2(&context, nullptr, "mp4", path.constData());
    if (result < 0 || context == nullptr) {
        *problem = QStringLiteral("no MP4 muxer: ") + errorText(result);
        return {};
    }
    AvOutputPtr output(context);
    for (unsigned i = 0; i < input.nb_streams; ++i) {
        const AVStream& from = *input.streams[i];
        AVStream* to = avformat_new_stream(context, nullptr);
        if (to == nullptr || avcodec_parameters_copy(to->codecpar, from.codecpar) < 0) {
            *problem = QStringLiteral("cannot copy the stream settings");
            return {};
        }
        to->codecpar->codec_tag = 0;
        to->time_base = from.time_base;
        to->avg_frame_rate = from.avg_frame_rate;
        to->r_frame_rate = from.r_frame_rate;
    }
    result = avio_open(&context->pb, path.constData(), AVIO_FLAG_WRITE);
    if (result < 0) {
        *problem = QStringLiteral("cannot create the file: ") + errorText(result);
        return {};
    }
    AVDictionary* options = nullptr;
    av_dict_set(&options, "movflags", "+faststart", 0);
    result = avformat_write_header(context, &options);
    av_dict_free(&options);
    if (result < 0) {
        *problem = QStringLiteral("cannot write the header: ") + errorText(result);
        return {};
    }
    return output;
}

QString copyPackets(AVFormatContext& input, AVFormatContext& output) {
    const AvPacketPtr packet(av_packet_alloc());
    if (!packet) {
        return QStringLiteral("out of memory");
    }
    for (;;) {
        const int read = av_read_frame(&input, packet.get());
        if (read == AVERROR_EOF) {
            break;
        }
        if (read < 0) {
            return QStringLiteral("cannot read the recording: ") + errorText(read);
        }
        const int index = packet->stream_index;
        av_packet_rescale_ts(packet.get(), input.streams[index]->time_base,
                             output.streams[index]->time_base);
        packet->pos = -1;
        const int written = av_interleaved_write_frame(&output, packet.get());
        if (written < 0) {
            return QStringLiteral("cannot write: ") + errorText(written);
        }
    }
    // The trailer moves the index to the front: a second pass over the file.
    const int result = av_write_trailer(&output);
    return result < 0 ? QStringLiteral("cannot finish: ") + errorText(result) : QString();
}

QString remuxInto(const QString& path, const QString& temporary) {
    QString problem;
    const AvInputPtr input = openInput(QFile::encodeName(path), &problem);
    if (!input) {
        return problem;
    }
    AvOutputPtr output = openOutput(QFile::encodeName(temporary), *input, &problem);
    if (!output) {
        return problem;
    }
    problem = copyPackets(*input, *output);
    if (problem.isEmpty() && avio_closep(&output->pb) < 0) {
        problem = QStringLiteral("cannot close the file");
    }
    return problem;
}

}  // namespace

QString remuxToFaststartMp4(const QString& path) {
    const QString temporary = temporaryPathFor(path);
    QString problem = remuxInto(path, temporary);
    // rename(2) replaces the file in one step: a reader sees either copy,
    // never a half-written one.
    if (problem.isEmpty() && std::rename(QFile::encodeName(temporary).constData(),
                                         QFile::encodeName(path).constData()) != 0) {
        problem = QStringLiteral("cannot replace the recording with its finished copy");
    }
    if (!problem.isEmpty()) {
        QFile::remove(temporary);
    }
    return problem;
}
