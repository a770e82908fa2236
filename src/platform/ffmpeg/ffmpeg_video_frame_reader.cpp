// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/ffmpeg/ffmpeg_video_frame_reader.h"

#include <QFile>
#include <QTransform>
#include <algorithm>
#include <cmath>
#include <memory>

extern "C" {
#include <libavutil/dict.h>
#include <libavutil/display.h>
#include <libavutil/time.h>
}

#include "platform/ffmpeg/av_pointers.h"

namespace {

// A damaged file can make the demuxer skip garbage for a long time; these
// bounds make sure a thumbnail never holds a worker thread for long.
constexpr int kMaxPacketsBeforeFirstFrame = 2000;
constexpr int64_t kTimeLimitMicroseconds = 10'000'000;

int interruptAfterDeadline(void* opaque) {
    const int64_t deadline = *static_cast<const int64_t*>(opaque);
    return av_gettime_relative() > deadline ? 1 : 0;
}

// Opens a local file only: the whitelist keeps a crafted playlist or
// reference movie from reaching out to the network or other protocols.
AvInputPtr openInput(const QString& path, int64_t* deadline) {
    AVFormatContext* context = avformat_alloc_context();
    if (context == nullptr) {
        return {};
    }
    context->interrupt_callback.callback = interruptAfterDeadline;
    context->interrupt_callback.opaque = deadline;

    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    const QByteArray url = QByteArrayLiteral("file:") + QFile::encodeName(path);
    const int opened = avformat_open_input(&context, url.constData(), nullptr, &options);
    av_dict_free(&options);
    if (opened < 0) {
        return {};  // avformat_open_input has freed the context.
    }
    AvInputPtr input(context);
    if (avformat_find_stream_info(context, nullptr) < 0) {
        return {};
    }
    return input;
}

AvCodecContextPtr openDecoder(const AVStream& stream, const AVCodec& codec) {
    AvCodecContextPtr decoder(avcodec_alloc_context3(&codec));
    if (!decoder || avcodec_parameters_to_context(decoder.get(), stream.codecpar) < 0) {
        return {};
    }
    // Callers already decode several files in parallel.
    decoder->thread_count = 1;
    if (avcodec_open2(decoder.get(), &codec, nullptr) < 0) {
        return {};
    }
    return decoder;
}

// Reads packets of `streamIndex` until the decoder hands out a frame. Broken
// packets are skipped: a later key frame may still decode.
bool decodeFirstFrame(AVFormatContext& input, int streamIndex, AVCodecContext& decoder,
                      AVFrame& frame) {
    AvPacketPtr packet(av_packet_alloc());
    if (!packet) {
        return false;
    }
    for (int read = 0; read < kMaxPacketsBeforeFirstFrame; ++read) {
        if (av_read_frame(&input, packet.get()) < 0) {
            // End of file or unreadable rest: drain what the decoder holds.
            avcodec_send_packet(&decoder, nullptr);
            return avcodec_receive_frame(&decoder, &frame) == 0;
        }
        const bool ours = packet->stream_index == streamIndex;
        const int sent = ours ? avcodec_send_packet(&decoder, packet.get()) : 0;
        av_packet_unref(packet.get());
        if (!ours || (sent < 0 && sent != AVERROR(EAGAIN))) {
            continue;
        }
        const int received = avcodec_receive_frame(&decoder, &frame);
        if (received == 0) {
            return true;
        }
        if (received == AVERROR_EOF) {
            return false;
        }
    }
    return false;
}

// Clockwise degrees (0, 90, 180 or 270) the picture must be turned to be
// shown upright; anything else (flips, odd angles) is left alone.
int uprightRotation(const AVStream& stream, const AVFrame& frame) {
    size_t size = 0;
    const uint8_t* matrix = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
    if (matrix == nullptr || size < 9 * sizeof(int32_t)) {
        const AVFrameSideData* sideData =
            av_frame_get_side_data(&frame, AV_FRAME_DATA_DISPLAYMATRIX);
        matrix =
            sideData != nullptr && sideData->size >= 9 * sizeof(int32_t) ? sideData->data : nullptr;
    }
    if (matrix == nullptr) {
        return 0;
    }
    // av_display_rotation_get answers counter-clockwise.
    const double degrees = -av_display_rotation_get(reinterpret_cast<const int32_t*>(matrix));
    if (!std::isfinite(degrees)) {
        return 0;
    }
    const double normalized = std::fmod(std::fmod(degrees, 360.0) + 360.0, 360.0);
    for (const int quarter : {0, 90, 180, 270, 360}) {
        if (std::abs(normalized - quarter) < 1.0) {
            return quarter % 360;
        }
    }
    return 0;
}

// The frame's shown size (non-square pixels widened or narrowed), fitted
// into `maxSide` without enlarging.
QSize thumbnailSize(const AVFrame& frame, int maxSide) {
    double shownWidth = frame.width;
    const AVRational aspect = frame.sample_aspect_ratio;
    if (aspect.num > 0 && aspect.den > 0) {
        shownWidth = frame.width * av_q2d(aspect);
    }
    const double longer = std::max(shownWidth, static_cast<double>(frame.height));
    const double scale = std::min(1.0, maxSide / longer);
    return {std::max(1, static_cast<int>(std::lround(shownWidth * scale))),
            std::max(1, static_cast<int>(std::lround(frame.height * scale)))};
}

void applyColorDetails(SwsContext& scaler, const AVFrame& frame) {
    const int* coefficients = sws_getCoefficients(frame.colorspace);
    const int fullRange = frame.color_range == AVCOL_RANGE_JPEG ? 1 : 0;
    sws_setColorspaceDetails(&scaler, coefficients, fullRange, sws_getCoefficients(SWS_CS_DEFAULT),
                             1, 0, 1 << 16, 1 << 16);
}

QImage scaleToImage(const AVFrame& frame, int maxSide) {
    const auto format = static_cast<AVPixelFormat>(frame.format);
    if (frame.width <= 0 || frame.height <= 0 || format == AV_PIX_FMT_NONE ||
        !sws_isSupportedInput(format)) {
        return {};
    }
    const QSize size = thumbnailSize(frame, maxSide);
    SwsContextPtr scaler(sws_getContext(frame.width, frame.height, format, size.width(),
                                        size.height(), AV_PIX_FMT_RGB0, SWS_AREA, nullptr, nullptr,
                                        nullptr));
    if (!scaler) {
        return {};
    }
    applyColorDetails(*scaler, frame);
    QImage image(size, QImage::Format_RGBX8888);
    if (image.isNull()) {
        return {};
    }
    uint8_t* destination[4] = {image.bits(), nullptr, nullptr, nullptr};
    const int destinationStride[4] = {static_cast<int>(image.bytesPerLine()), 0, 0, 0};
    if (sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, destination,
                  destinationStride) <= 0) {
        return {};
    }
    return image;
}

}  // namespace

QImage FfmpegVideoFrameReader::firstFrame(const QString& path, int maxSide) const {
    if (maxSide <= 0) {
        return {};
    }
    int64_t deadline = av_gettime_relative() + kTimeLimitMicroseconds;
    const AvInputPtr input = openInput(path, &deadline);
    if (!input) {
        return {};
    }
    const AVCodec* codec = nullptr;
    const int streamIndex = av_find_best_stream(input.get(), AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    if (streamIndex < 0 || codec == nullptr) {
        return {};
    }
    for (unsigned i = 0; i < input->nb_streams; ++i) {
        if (static_cast<int>(i) != streamIndex) {
            input->streams[i]->discard = AVDISCARD_ALL;
        }
    }
    const AVStream& stream = *input->streams[streamIndex];
    const AvCodecContextPtr decoder = openDecoder(stream, *codec);
    const AvFramePtr frame(av_frame_alloc());
    if (!decoder || !frame || !decodeFirstFrame(*input, streamIndex, *decoder, *frame)) {
        return {};
    }
    QImage image = scaleToImage(*frame, maxSide);
    const int rotation = uprightRotation(stream, *frame);
    if (image.isNull() || rotation == 0) {
        return image;
    }
    return image.transformed(QTransform().rotate(rotation));
}
