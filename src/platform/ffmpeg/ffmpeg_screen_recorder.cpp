// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/ffmpeg/ffmpeg_screen_recorder.h"

#include <QFile>
#include <QMetaObject>
#include <QPointer>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <mutex>
#include <thread>
#include <utility>

#include "platform/ffmpeg/av_pointers.h"
#include "platform/ffmpeg/bounded_frame_queue.h"
#include "platform/ffmpeg/constant_rate_timeline.h"
#include "platform/ffmpeg/mp4_remux.h"

extern "C" {
#include <libavdevice/avdevice.h>
#include <libavutil/error.h>
#include <libavutil/imgutils.h>
#include <libavutil/log.h>
#include <libavutil/opt.h>
}

namespace {

// Pictures in circulation between grabber and encoder: one being filled,
// two waiting, one being encoded and the last one kept for repeats. About
// 15 MB at 1920 × 1080.
constexpr int kPicturesInCirculation = 5;
// Movie fragments close at every key frame, so a killed recording loses at
// most the last two seconds.
constexpr const char* kRecordingMovFlags = "frag_keyframe+empty_moov+default_base_moof";

qint64 steadyMicroseconds() {
    return std::chrono::duration_cast<std::chrono::microseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

QString errorText(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return QString::fromUtf8(text);
}

// libavdevice registers its grabbers once per process; the encoder's chatter
// ("using cpu capabilities…") would fill the program's output.
void initialiseFfmpegDevices() {
    static std::once_flag once;
    std::call_once(once, [] {
        avdevice_register_all();
        if (av_log_get_level() > AV_LOG_ERROR) {
            av_log_set_level(AV_LOG_ERROR);
        }
    });
}

// 4:2:0 subsampling halves both directions, so H.264 needs even sizes.
QSize evenSize(const QSize& size) {
    return {size.width() + size.width() % 2, size.height() + size.height() % 2};
}

// Everything one recording opens, in the order it is opened.
struct Pipeline {
    AvOutputPtr output;
    AvInputPtr input;
    SwsContextPtr scaler;
    AvCodecContextPtr encoder;
    AVStream* stream = nullptr;
    AVPixelFormat inputFormat = AV_PIX_FMT_NONE;
    QSize areaSize;
    QSize encodedSize;
};

bool openOutputFile(Pipeline& pipeline, const QString& path, ScreenRecordingStartError* error) {
    const QByteArray file = QFile::encodeName(path);
    AVFormatContext* context = nullptr;
    int result = avformat_alloc_output_context2(&context, nullptr, "mp4", file.constData());
    if (result < 0 || context == nullptr) {
        *error = {ScreenRecordingFailure::outputFile, errorText(result)};
        return false;
    }
    pipeline.output.reset(context);
    result = avio_open(&context->pb, file.constData(), AVIO_FLAG_WRITE);
    if (result < 0) {
        *error = {ScreenRecordingFailure::outputFile, errorText(result)};
        return false;
    }
    return true;
}

bool openScreen(Pipeline& pipeline, const QByteArray& displayName, const QRect& area,
                ScreenRecordingStartError* error) {
    const AVInputFormat* grabber = av_find_input_format("x11grab");
    if (grabber == nullptr) {
        *error = {ScreenRecordingFailure::screenInput,
                  QStringLiteral("FFmpeg was built without x11grab")};
        return false;
    }
    // ":0+100,200" grabs from the point (100, 200) of display :0.
    const QByteArray url =
        displayName + '+' + QByteArray::number(area.x()) + ',' + QByteArray::number(area.y());
    AVDictionary* options = nullptr;
    av_dict_set_int(&options, "framerate", ScreenRecorderBackend::kFramesPerSecond, 0);
    av_dict_set(&options, "video_size",
                QByteArray::number(area.width()) + 'x' + QByteArray::number(area.height()), 0);
    av_dict_set_int(&options, "draw_mouse", 1, 0);
    AVFormatContext* context = nullptr;
    const int result = avformat_open_input(&context, url.constData(), grabber, &options);
    av_dict_free(&options);
    if (result < 0) {
        *error = {ScreenRecordingFailure::screenInput,
                  QStringLiteral("%1: %2").arg(QString::fromUtf8(url), errorText(result))};
        return false;
    }
    pipeline.input.reset(context);
    return true;
}

// Same size in and out: only the colour conversion runs. For an odd width
// libswscale's shortcut averages pixel pairs for the chroma and so reads one
// pixel past each row (the next row's first); computing chroma per pixel
// first keeps the edge's colour.
int scalerFlags(const QSize& size) {
    return size.width() % 2 == 0 ? SWS_POINT : SWS_POINT | SWS_FULL_CHR_H_INP;
}

bool makeScaler(Pipeline& pipeline, ScreenRecordingStartError* error) {
    const AVFormatContext& input = *pipeline.input;
    const AVCodecParameters* parameters =
        input.nb_streams > 0 ? input.streams[0]->codecpar : nullptr;
    const auto format =
        parameters != nullptr ? static_cast<AVPixelFormat>(parameters->format) : AV_PIX_FMT_NONE;
    if (parameters == nullptr || parameters->codec_type != AVMEDIA_TYPE_VIDEO ||
        format == AV_PIX_FMT_NONE || !sws_isSupportedInput(format) ||
        QSize(parameters->width, parameters->height) != pipeline.areaSize) {
        *error = {ScreenRecordingFailure::inputFormat,
                  QStringLiteral("the screen delivers no pictures of the requested size")};
        return false;
    }
    pipeline.inputFormat = format;
    const QSize size = pipeline.areaSize;
    pipeline.scaler.reset(sws_getContext(size.width(), size.height(), format, size.width(),
                                         size.height(), AV_PIX_FMT_YUV420P, scalerFlags(size),
                                         nullptr, nullptr, nullptr));
    if (!pipeline.scaler) {
        *error = {ScreenRecordingFailure::inputFormat,
                  QStringLiteral("no conversion from %1 to YUV 4:2:0")
                      .arg(QString::fromUtf8(av_get_pix_fmt_name(format)))};
        return false;
    }
    return true;
}

AvCodecContextPtr makeEncoder(const Pipeline& pipeline, qint64 bitRate, QString* problem) {
    const AVCodec* codec = avcodec_find_encoder_by_name("libx264");
    if (codec == nullptr) {
        *problem = QStringLiteral("FFmpeg was built without libx264");
        return {};
    }
    AvCodecContextPtr encoder(avcodec_alloc_context3(codec));
    if (!encoder) {
        *problem = QStringLiteral("out of memory");
        return {};
    }
    encoder->width = pipeline.encodedSize.width();
    encoder->height = pipeline.encodedSize.height();
    encoder->pix_fmt = AV_PIX_FMT_YUV420P;
    encoder->time_base = {1, ScreenRecorderBackend::kFramesPerSecond};
    encoder->framerate = {ScreenRecorderBackend::kFramesPerSecond, 1};
    encoder->bit_rate = bitRate;
    encoder->gop_size = FfmpegScreenRecorder::kKeyFrameIntervalFrames;
    const auto cores = static_cast<int>(std::thread::hardware_concurrency());
    encoder->thread_count = std::clamp(cores * 3 / 2, 1, FfmpegScreenRecorder::kMaxEncoderThreads);
    // libswscale's default conversion: BT.601 coefficients, limited range.
    encoder->colorspace = AVCOL_SPC_SMPTE170M;
    encoder->color_range = AVCOL_RANGE_MPEG;
    if ((pipeline.output->oformat->flags & AVFMT_GLOBALHEADER) != 0) {
        encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }
    AVDictionary* options = nullptr;
    av_dict_set(&options, "preset", FfmpegScreenRecorder::kEncoderPreset, 0);
    const int result = avcodec_open2(encoder.get(), codec, &options);
    av_dict_free(&options);
    if (result < 0) {
        *problem = QStringLiteral("libx264: ") + errorText(result);
        return {};
    }
    return encoder;
}

bool openEncoder(Pipeline& pipeline, qint64 bitRate, ScreenRecordingStartError* error) {
    QString problem;
    pipeline.encoder = makeEncoder(pipeline, bitRate, &problem);
    AVStream* stream =
        pipeline.encoder ? avformat_new_stream(pipeline.output.get(), nullptr) : nullptr;
    if (stream == nullptr ||
        avcodec_parameters_from_context(stream->codecpar, pipeline.encoder.get()) < 0) {
        *error = {ScreenRecordingFailure::encoder,
                  problem.isEmpty() ? QStringLiteral("cannot add the video stream") : problem};
        return false;
    }
    stream->time_base = pipeline.encoder->time_base;
    stream->avg_frame_rate = pipeline.encoder->framerate;
    pipeline.stream = stream;
    // Each fragment goes to the file as soon as it is complete, not when
    // FFmpeg's write buffer happens to fill.
    pipeline.output->flags |= AVFMT_FLAG_FLUSH_PACKETS;
    AVDictionary* options = nullptr;
    av_dict_set(&options, "movflags", kRecordingMovFlags, 0);
    const int result = avformat_write_header(pipeline.output.get(), &options);
    av_dict_free(&options);
    if (result < 0) {
        *error = {ScreenRecordingFailure::encoder,
                  QStringLiteral("cannot write the MP4 header: ") + errorText(result)};
        return false;
    }
    return true;
}

bool fillBlack(AVFrame& frame) {
    const ptrdiff_t strides[4] = {frame.linesize[0], frame.linesize[1], frame.linesize[2],
                                  frame.linesize[3]};
    return av_image_fill_black(frame.data, strides, AV_PIX_FMT_YUV420P, AVCOL_RANGE_MPEG,
                               frame.width, frame.height) >= 0;
}

std::vector<AvFramePtr> allocatePictures(const QSize& size) {
    std::vector<AvFramePtr> pictures;
    for (int i = 0; i < kPicturesInCirculation; ++i) {
        AvFramePtr frame(av_frame_alloc());
        if (!frame) {
            return {};
        }
        frame->format = AV_PIX_FMT_YUV420P;
        frame->width = size.width();
        frame->height = size.height();
        // Filled at once, so their memory is taken now rather than the first
        // time the encoder falls behind: memory stays flat while recording.
        if (av_frame_get_buffer(frame.get(), 0) < 0 || !fillBlack(*frame)) {
            return {};
        }
        pictures.push_back(std::move(frame));
    }
    return pictures;
}

// Fills the padding column and row of an odd-sized picture with copies of
// its edge pixels. libswscale has already written the chroma planes whole
// (their size rounds up), so only the luma plane needs it.
void repeatEdgePixels(AVFrame& frame, const QSize& area) {
    uint8_t* luma = frame.data[0];
    const int stride = frame.linesize[0];
    if (frame.width > area.width()) {
        for (int y = 0; y < area.height(); ++y) {
            uint8_t* row = luma + static_cast<ptrdiff_t>(y) * stride;
            row[area.width()] = row[area.width() - 1];
        }
    }
    if (frame.height > area.height()) {
        std::memcpy(luma + static_cast<ptrdiff_t>(area.height()) * stride,
                    luma + static_cast<ptrdiff_t>(area.height() - 1) * stride,
                    static_cast<size_t>(frame.width));
    }
}

class FfmpegScreenRecording final : public ScreenRecording {
public:
    FfmpegScreenRecording(Pipeline pipeline, std::vector<AvFramePtr> pictures, QString path)
        : pipeline_(std::move(pipeline)), queue_(std::move(pictures)), path_(std::move(path)) {
        grabber_ = std::thread([this] { grabUntilStopped(); });
        encoder_ = std::thread([this] { encodeUntilDone(); });
    }

    ~FfmpegScreenRecording() override {
        if (!stopCalled_) {
            requestStop();
            finish();
        }
        if (finisher_.joinable()) {
            finisher_.join();
        }
    }

    FfmpegScreenRecording(const FfmpegScreenRecording&) = delete;
    FfmpegScreenRecording& operator=(const FfmpegScreenRecording&) = delete;

    QSize encodedSize() const override { return pipeline_.encodedSize; }

    void stop(QObject* context, FinishedCallback finished) override {
        if (stopCalled_) {
            return;
        }
        stopCalled_ = true;
        requestStop();
        finisher_ = std::thread([this, context, finished = std::move(finished)] {
            const ScreenRecordingResult result = finish();
            QMetaObject::invokeMethod(
                context, [finished, result] { finished(result); }, Qt::QueuedConnection);
        });
    }

    ScreenRecordingCounts counts() const override {
        return {captured_.load(), dropped_.load(), repeated_.load(), written_.load()};
    }

private:
    void requestStop() {
        stopAt_.store(steadyMicroseconds());
        stopRequested_.store(true);
    }

    // Grabbing thread: one picture per frame interval (x11grab paces itself)
    // until stopped or the screen goes away.
    void grabUntilStopped() {
        const AvPacketPtr packet(av_packet_alloc());
        while (packet && !stopRequested_.load()) {
            const int read = av_read_frame(pipeline_.input.get(), packet.get());
            if (read == AVERROR(EAGAIN)) {
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
                continue;
            }
            if (read < 0) {
                break;  // the display is gone: the file keeps what it has
            }
            const qint64 grabbedAt = steadyMicroseconds();
            if (!stopRequested_.load()) {
                takePicture(*packet, grabbedAt);
            }
            av_packet_unref(packet.get());
        }
        pipeline_.input.reset();  // closes the X connection now, not at destruction
        queue_.close();
    }

    void takePicture(const AVPacket& packet, qint64 grabbedAt) {
        ++captured_;
        AvFramePtr picture = queue_.takeFree();
        if (!picture) {
            ++dropped_;  // the encoder is behind: never queue without bound
            return;
        }
        if (convert(packet, *picture)) {
            queue_.push(std::move(picture), grabbedAt);
        } else {
            queue_.recycle(std::move(picture));
        }
    }

    bool convert(const AVPacket& packet, AVFrame& picture) const {
        const QSize area = pipeline_.areaSize;
        uint8_t* source[4] = {};
        int sourceStride[4] = {};
        const int needed =
            av_image_fill_arrays(source, sourceStride, packet.data, pipeline_.inputFormat,
                                 area.width(), area.height(), 1);
        if (needed < 0 || packet.size < needed || av_frame_make_writable(&picture) < 0) {
            return false;
        }
        sws_scale(pipeline_.scaler.get(), source, sourceStride, 0, area.height(), picture.data,
                  picture.linesize);
        repeatEdgePixels(picture, area);
        return true;
    }

    // Encoding thread: every grabbed picture onto the constant-rate time
    // line, gaps filled with the previous one; at the end, the time line is
    // completed up to the moment of stopping and the encoder drained.
    void encodeUntilDone() {
        AvFramePtr last;
        while (std::optional<BoundedFrameQueue::Grabbed> grabbed = queue_.pop()) {
            const ConstantRateTimeline::Placement placement = timeline_.place(grabbed->grabbedAt);
            if (!placement.kept) {
                ++dropped_;
                queue_.recycle(std::move(grabbed->frame));
                continue;
            }
            encodeRepeats(last.get(), placement.repeatsBefore);
            encode(*grabbed->frame);
            queue_.recycle(std::move(last));
            last = std::move(grabbed->frame);
        }
        if (last) {
            encodeRepeats(last.get(), timeline_.repeatsUntil(stopAt_.load()));
            sendToEncoder(nullptr);
            const int result = av_write_trailer(pipeline_.output.get());
            if (result < 0 && writeProblem_.isEmpty()) {
                writeProblem_ = QStringLiteral("cannot finish the file: ") + errorText(result);
            }
        }
        queue_.recycle(std::move(last));
        // The encoder's own threads end here, not when the object goes.
        pipeline_.encoder.reset();
        pipeline_.output.reset();
    }

    void encodeRepeats(AVFrame* last, qint64 count) {
        for (qint64 i = 0; last != nullptr && i < count; ++i) {
            encode(*last);
            ++repeated_;
        }
    }

    // The picture into the next slot of the time line.
    void encode(AVFrame& picture) {
        picture.pts = written_.load();
        ++written_;
        sendToEncoder(&picture);
    }

    // Sends one picture (nothing: the end) and writes what comes out.
    void sendToEncoder(AVFrame* picture) {
        AVCodecContext* encoder = pipeline_.encoder.get();
        if (avcodec_send_frame(encoder, picture) < 0) {
            return;
        }
        const AvPacketPtr packet(av_packet_alloc());
        while (packet && avcodec_receive_packet(encoder, packet.get()) == 0) {
            av_packet_rescale_ts(packet.get(), encoder->time_base, pipeline_.stream->time_base);
            packet->stream_index = pipeline_.stream->index;
            const int written = writeProblem_.isEmpty() ? av_interleaved_write_frame(
                                                              pipeline_.output.get(), packet.get())
                                                        : 0;
            if (written < 0) {
                writeProblem_ = QStringLiteral("cannot write: ") + errorText(written);
            }
            av_packet_unref(packet.get());
        }
    }

    // Ends both threads, then deletes a file without pictures or turns the
    // fragmented file into its final form.
    ScreenRecordingResult finish() {
        grabber_.join();
        encoder_.join();
        ScreenRecordingResult result;
        result.path = path_;
        result.counts = counts();
        if (result.counts.written == 0) {
            QFile::remove(path_);
            result.outcome = ScreenRecordingResult::Outcome::noFrames;
            return result;
        }
        result.outcome = ScreenRecordingResult::Outcome::saved;
        result.finishProblem = writeProblem_.isEmpty() ? remuxToFaststartMp4(path_) : writeProblem_;
        return result;
    }

    Pipeline pipeline_;
    BoundedFrameQueue queue_;
    ConstantRateTimeline timeline_{ScreenRecorderBackend::kFramesPerSecond};
    const QString path_;
    std::atomic<bool> stopRequested_{false};
    std::atomic<qint64> stopAt_{0};
    std::atomic<qint64> captured_{0};
    std::atomic<qint64> dropped_{0};
    std::atomic<qint64> repeated_{0};
    std::atomic<qint64> written_{0};
    QString writeProblem_;  // encoding thread until it has ended
    bool stopCalled_ = false;
    std::thread grabber_;
    std::thread encoder_;
    std::thread finisher_;
};

}  // namespace

FfmpegScreenRecorder::FfmpegScreenRecorder(const QByteArray& displayName)
    : displayName_(displayName) {}

std::unique_ptr<ScreenRecording> FfmpegScreenRecorder::start(const ScreenRecordingRequest& request,
                                                             ScreenRecordingStartError* error) {
    initialiseFfmpegDevices();
    ScreenRecordingStartError failure;
    Pipeline pipeline;
    pipeline.areaSize = request.area.size();
    pipeline.encodedSize = evenSize(pipeline.areaSize);
    std::vector<AvFramePtr> pictures;
    const bool opened =
        !request.area.isEmpty() && openOutputFile(pipeline, request.outputPath, &failure) &&
        openScreen(pipeline, displayName_, request.area, &failure) &&
        makeScaler(pipeline, &failure) && openEncoder(pipeline, request.bitRate, &failure) &&
        !(pictures = allocatePictures(pipeline.encodedSize)).empty();
    if (!opened) {
        if (request.area.isEmpty()) {
            failure = {ScreenRecordingFailure::screenInput, QStringLiteral("empty area")};
        } else if (failure.reason.isEmpty()) {
            failure = {ScreenRecordingFailure::encoder, QStringLiteral("out of memory")};
        }
        const bool fileCreated = pipeline.output && pipeline.output->pb != nullptr;
        pipeline = {};
        if (fileCreated) {
            QFile::remove(request.outputPath);
        }
        if (error != nullptr) {
            *error = failure;
        }
        return {};
    }
    return std::make_unique<FfmpegScreenRecording>(std::move(pipeline), std::move(pictures),
                                                   request.outputPath);
}
