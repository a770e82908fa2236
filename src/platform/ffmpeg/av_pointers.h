// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/frame.h>
#include <libswscale/swscale.h>
}

// Owning pointers for the FFmpeg objects of the recorder and the frame reader.
struct AvFrameFreer {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
struct AvPacketFreer {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
struct AvCodecContextFreer {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
struct AvInputCloser {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
struct AvOutputFreer {
    void operator()(AVFormatContext* context) const {
        if (context->pb != nullptr) {
            avio_closep(&context->pb);
        }
        avformat_free_context(context);
    }
};
struct SwsContextFreer {
    void operator()(SwsContext* context) const { sws_freeContext(context); }
};

using AvFramePtr = std::unique_ptr<AVFrame, AvFrameFreer>;
using AvPacketPtr = std::unique_ptr<AVPacket, AvPacketFreer>;
using AvCodecContextPtr = std::unique_ptr<AVCodecContext, AvCodecContextFreer>;
using AvInputPtr = std::unique_ptr<AVFormatContext, AvInputCloser>;
using AvOutputPtr = std::unique_ptr<AVFormatContext, AvOutputFreer>;
using SwsContextPtr = std::unique_ptr<SwsContext, SwsContextFreer>;
