// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// bench_recording: the screen recorder against the ffmpeg command line, on
// the same busy screen.
//
//   bench_recording [--seconds N] [--preset P]
//
// Run it inside scripts/with-desktop (a 1920 × 1080 Xvfb). A child process
// covers the screen with a window repainting a moving pattern 60 times a
// second; then the whole screen is recorded for N seconds (default 60), once
// by Quillix's recorder and once by `ffmpeg -f x11grab` with the same size,
// frame rate, bit rate, key-frame interval and x264 preset. For both:
//   frames      frames in the file (ffprobe) and the 30 × N expected
//   dropped     pictures grabbed but not encoded (the encoder was busy)
//   repeated    frames that repeat the previous picture (ffmpeg: "dup")
//   cpu/10s     CPU seconds (user + system) per 10 s of video
//   rss         resident memory at 5 s, at the end, and the peak (the whole
//               process: Quillix's figure includes this program's own)
//   stop→file   from the stop request to a finished, playable file

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QApplication>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <cmath>
#include <cstdio>
#include <optional>

#include "platform/ffmpeg/ffmpeg_screen_recorder.h"

extern char** environ;

namespace {

constexpr int kFramesPerSecond = ScreenRecorderBackend::kFramesPerSecond;
constexpr QSize kScreen(1920, 1080);

// Moving bars, a sweeping gradient and a grid of blocks that change every
// frame: every recorded picture differs, as with a video playing or a
// window being dragged.
class PatternWindow : public QWidget {
public:
    PatternWindow() {
        setWindowFlags(Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint);
        setAccessibleName(QStringLiteral("Moving pattern"));
        setGeometry(QRect(QPoint(0, 0), kScreen));
        timer_.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer_, &QTimer::timeout, this, [this] {
            ++tick_;
            update();
        });
        timer_.start(16);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        QLinearGradient gradient(0, 0, width(), height());
        const double phase = std::fmod(tick_ * 0.01, 1.0);
        gradient.setColorAt(0, QColor::fromHsvF(phase, 0.6, 0.9));
        gradient.setColorAt(1, QColor::fromHsvF(1.0 - phase, 0.6, 0.5));
        painter.fillRect(rect(), gradient);
        for (int bar = 0; bar < 12; ++bar) {
            const int x = (tick_ * (4 + bar) + bar * 160) % width();
            painter.fillRect(x, 0, 24, height(), QColor::fromHsv((bar * 30) % 360, 255, 255));
        }
        for (int y = 0; y < height(); y += 60) {
            for (int x = 0; x < width(); x += 80) {
                const int shade = ((x * 7 + y * 13 + tick_ * 9) / 5) % 256;
                painter.fillRect(x + 10, y + 10, 40, 30, QColor(shade, 255 - shade, shade / 2));
            }
        }
    }

private:
    QTimer timer_;
    int tick_ = 0;
};

int runPatternWindow(int argc, char** argv) {
    QApplication application(argc, argv);
    PatternWindow window;
    window.show();
    if (!QTest::qWaitForWindowExposed(&window)) {
        return 1;
    }
    std::puts("ready");
    std::fflush(stdout);
    return QApplication::exec();
}

struct Memory {
    long rssKb = 0;
    long peakKb = 0;
};

Memory memoryOf(const QString& pid) {
    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
    Memory memory;
    if (!status.open(QIODevice::ReadOnly)) {
        return memory;
    }
    for (const QByteArray& line : status.readAll().split('\n')) {
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (fields.size() >= 2 && fields[0] == "VmRSS:") {
            memory.rssKb = fields[1].toLong();
        } else if (fields.size() >= 2 && fields[0] == "VmHWM:") {
            memory.peakKb = fields[1].toLong();
        }
    }
    return memory;
}

double cpuSeconds(const rusage& usage) {
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

qint64 framesInFile(const QString& path) {
    QProcess probe;
    probe.start(QStringLiteral("ffprobe"),
                {"-v", "error", "-count_packets", "-select_streams", "v:0", "-show_entries",
                 "stream=nb_read_packets", "-of", "csv=p=0", path});
    probe.waitForFinished(120000);
    return probe.readAllStandardOutput().trimmed().toLongLong();
}

struct Figures {
    QList<long> rssEveryTenSecondsMb;
    qint64 frames = 0;
    qint64 dropped = 0;
    qint64 repeated = 0;
    double cpu = 0;
    Memory atFive;
    Memory atEnd;
    double stopToFileMs = 0;
};

void print(const char* who, const Figures& figures, int seconds) {
    const double videoSeconds = static_cast<double>(figures.frames) / kFramesPerSecond;
    std::printf(
        "%-9s frames %5lld/%d  dropped %4lld  repeated %4lld (%.2f %%)  cpu/10s %.2f s  "
        "rss@5s %4ld MB  rss@end %4ld MB  peak %4ld MB  stop→file %6.0f ms\n",
        who, static_cast<long long>(figures.frames), seconds * kFramesPerSecond,
        static_cast<long long>(figures.dropped), static_cast<long long>(figures.repeated),
        figures.frames > 0
            ? 100.0 * static_cast<double>(figures.repeated) / static_cast<double>(figures.frames)
            : 0.0,
        videoSeconds > 0 ? figures.cpu / videoSeconds * 10 : 0.0, figures.atFive.rssKb / 1024,
        figures.atEnd.rssKb / 1024, figures.atEnd.peakKb / 1024, figures.stopToFileMs);
    QStringList trace;
    for (const long megabytes : figures.rssEveryTenSecondsMb) {
        trace.append(QString::number(megabytes));
    }
    std::printf("%-9s rss every 10 s (MB): %s\n", who, qPrintable(trace.join(QLatin1Char(' '))));
    std::fflush(stdout);
}

// Waits `seconds`, noting the memory of `pid` at 5 s and at the end.
void waitAndSample(const QString& pid, int seconds, Figures* figures) {
    QElapsedTimer clock;
    clock.start();
    bool sampledFive = false;
    while (clock.elapsed() < seconds * 1000LL) {
        QTest::qWait(100);
        if (!sampledFive && clock.elapsed() >= 5000) {
            figures->atFive = memoryOf(pid);
            sampledFive = true;
        }
        if (clock.elapsed() >= (figures->rssEveryTenSecondsMb.size() + 1) * 10000LL) {
            figures->rssEveryTenSecondsMb.append(memoryOf(pid).rssKb / 1024);
        }
    }
    figures->atEnd = memoryOf(pid);
    if (!sampledFive) {
        figures->atFive = figures->atEnd;
    }
}

std::optional<Figures> recordWithQuillix(const QString& path, int seconds) {
    FfmpegScreenRecorder recorder(qgetenv("DISPLAY"));
    const qint64 bitRate = qint64{2} * kScreen.width() * kScreen.height();
    rusage before{};
    getrusage(RUSAGE_SELF, &before);
    QElapsedTimer opening;
    opening.start();
    ScreenRecordingStartError error;
    std::unique_ptr<ScreenRecording> recording =
        recorder.start({QRect(QPoint(0, 0), kScreen), path, bitRate}, &error);
    if (!recording) {
        std::fprintf(stderr, "cannot record: %s\n", error.reason.toLocal8Bit().constData());
        return std::nullopt;
    }
    std::printf("quillix   start() took %lld ms\n", static_cast<long long>(opening.elapsed()));
    Figures figures;
    waitAndSample(QStringLiteral("self"), seconds, &figures);

    QElapsedTimer stopping;
    stopping.start();
    std::optional<ScreenRecordingResult> result;
    QObject context;
    recording->stop(&context, [&](const ScreenRecordingResult& done) { result = done; });
    while (!result) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    figures.stopToFileMs = static_cast<double>(stopping.nsecsElapsed()) / 1e6;
    recording.reset();
    rusage after{};
    getrusage(RUSAGE_SELF, &after);
    figures.cpu = cpuSeconds(after) - cpuSeconds(before);
    figures.atEnd.peakKb = memoryOf(QStringLiteral("self")).peakKb;
    figures.dropped = result->counts.dropped;
    figures.repeated = result->counts.repeated;
    figures.frames = framesInFile(path);
    if (!result->finishProblem.isEmpty()) {
        std::printf("quillix   finish problem: %s\n", result->finishProblem.toLocal8Bit().data());
    }
    return figures;
}

std::optional<Figures> recordWithCommandLine(const QString& path, const QString& logPath,
                                             int seconds, const char* preset) {
    const QByteArray display = qgetenv("DISPLAY") + "+0,0";
    const QByteArray size =
        QByteArray::number(kScreen.width()) + 'x' + QByteArray::number(kScreen.height());
    const QByteArray bitRate = QByteArray::number(2LL * kScreen.width() * kScreen.height());
    const QByteArray keyInterval =
        QByteArray::number(FfmpegScreenRecorder::kKeyFrameIntervalFrames);
    const QByteArray output = QFile::encodeName(path);
    const QByteArray log = QFile::encodeName(logPath);
    std::vector<const char*> arguments = {"ffmpeg",
                                          "-hide_banner",
                                          "-nostdin",
                                          "-y",
                                          "-f",
                                          "x11grab",
                                          "-framerate",
                                          "30",
                                          "-video_size",
                                          size.constData(),
                                          "-draw_mouse",
                                          "1",
                                          "-i",
                                          display.constData(),
                                          "-c:v",
                                          "libx264",
                                          "-preset",
                                          preset,
                                          "-b:v",
                                          bitRate.constData(),
                                          "-g",
                                          keyInterval.constData(),
                                          "-pix_fmt",
                                          "yuv420p",
                                          "-r",
                                          "30",
                                          "-movflags",
                                          "+faststart",
                                          output.constData(),
                                          nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 2, log.constData(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0644);
    pid_t pid = 0;
    const int spawned = posix_spawnp(&pid, "ffmpeg", &actions, nullptr,
                                     const_cast<char* const*>(arguments.data()), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        std::fprintf(stderr, "cannot run ffmpeg\n");
        return std::nullopt;
    }
    Figures figures;
    waitAndSample(QString::number(pid), seconds, &figures);
    // Not wait4's ru_maxrss: a spawned child inherits its parent's peak.
    const long peakBeforeStop = figures.atEnd.peakKb;
    QElapsedTimer stopping;
    stopping.start();
    ::kill(pid, SIGINT);  // ffmpeg finishes its file on SIGINT, like pressing q
    int status = 0;
    rusage usage{};
    wait4(pid, &status, 0, &usage);
    figures.stopToFileMs = static_cast<double>(stopping.nsecsElapsed()) / 1e6;
    figures.cpu = cpuSeconds(usage);
    figures.atEnd.peakKb = peakBeforeStop;
    figures.frames = framesInFile(path);
    // The last progress line: "frame= 1800 fps= 30 … dup=3 drop=0 speed=…".
    QFile logFile(logPath);
    logFile.open(QIODevice::ReadOnly);
    const QString text = QString::fromUtf8(logFile.readAll());
    const auto last = [&](const QString& pattern) {
        QRegularExpressionMatchIterator matches = QRegularExpression(pattern).globalMatch(text);
        qint64 value = 0;
        while (matches.hasNext()) {
            value = matches.next().captured(1).toLongLong();
        }
        return value;
    };
    figures.repeated = last(QStringLiteral("dup=\\s*(\\d+)"));
    figures.dropped = last(QStringLiteral("drop=\\s*(\\d+)"));
    return figures;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 1 && QByteArray(argv[1]) == "--pattern") {
        return runPatternWindow(argc, argv);
    }
    QCoreApplication application(argc, argv);
    int seconds = 60;
    QByteArray preset = FfmpegScreenRecorder::kEncoderPreset;
    const QStringList arguments = QCoreApplication::arguments();
    for (qsizetype i = 1; i + 1 < arguments.size(); ++i) {
        if (arguments[i] == QStringLiteral("--seconds")) {
            seconds = std::max(1, arguments[i + 1].toInt());
        } else if (arguments[i] == QStringLiteral("--preset")) {
            preset = arguments[i + 1].toLatin1();
        }
    }
    if (preset != FfmpegScreenRecorder::kEncoderPreset) {
        std::printf("note: Quillix always uses preset %s; --preset changes ffmpeg's only\n",
                    FfmpegScreenRecorder::kEncoderPreset);
    }

    QProcess pattern;
    pattern.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    pattern.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--pattern")});
    if (!pattern.waitForReadyRead(20000)) {
        std::fprintf(stderr, "the pattern window did not come up\n");
        return 1;
    }
    QTemporaryDir folder;
    std::printf("recording %d s of %dx%d at %d fps, x264 preset %s, %lld bit/s\n", seconds,
                kScreen.width(), kScreen.height(), kFramesPerSecond, preset.constData(),
                2LL * kScreen.width() * kScreen.height());
    const std::optional<Figures> ours = recordWithQuillix(folder.filePath("quillix.mp4"), seconds);
    if (ours) {
        print("quillix", *ours, seconds);
    }
    const std::optional<Figures> theirs = recordWithCommandLine(
        folder.filePath("ffmpeg.mp4"), folder.filePath("ffmpeg.log"), seconds, preset.constData());
    if (theirs) {
        print("ffmpeg", *theirs, seconds);
    }
    pattern.kill();
    pattern.waitForFinished(5000);
    return ours && theirs ? 0 : 1;
}
