// How fast VideoFileWriter encodes and writes 640x480 pictures with each capture compressor,
// its buffer emptied and the file's header brought up to date four times a second of video,
// beside the ffmpeg command line encoding as many test pictures of that size with the same codec
// into the same container, all at once. Wall time and CPU time (encoder threads and the ffmpeg
// process included) for each.
//
//   ravelcue_writer_bench [--benchmark_filter=...]

#include "RatioReporter.h"
#include "platform/media/ffmpeg/ImageFrames.h"
#include "platform/media/ffmpeg/VideoFileWriter.h"

#include <cstdio>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <vector>

#include <QImage>
#include <QPainter>
#include <QTemporaryDir>

extern char** environ;

using namespace ravelcue::media;
using namespace ravelcue::media::ffmpeg;

namespace {

// CPU time of this process and of the children it waited for, encoder threads included.
double cpuSeconds(int who) {
    rusage usage{};
    getrusage(who, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

constexpr int kWidth = 640;
constexpr int kHeight = 480;
constexpr int kFrames = 150; // five seconds at 30 fps

struct Compressor {
    const char* name;
    VideoCodec codec;
    const char* extension;
    int bitRate;
    std::vector<std::string> ffmpegCodec; // the same encoder on the command line
};

const std::vector<Compressor>& compressors() {
    static const std::vector<Compressor> list{
        {"MJPEG_AVI",
         VideoCodec::Mjpeg,
         "avi",
         0,
         {"-c:v", "mjpeg", "-q:v", "4", "-pix_fmt", "yuvj420p"}},
        {"H264_AVI",
         VideoCodec::H264,
         "avi",
         0,
         {"-c:v", "libx264", "-preset", "veryfast", "-crf", "20", "-bf", "0", "-g", "30"}},
        {"FFV1_AVI", VideoCodec::Ffv1, "avi", 0, {"-c:v", "ffv1", "-pix_fmt", "bgr0", "-g", "30"}},
        {"WMV", VideoCodec::Wmv2, "wmv", 1'500'000, {"-c:v", "wmv2", "-b:v", "1500k", "-g", "30"}},
    };
    return list;
}

// A second of moving pictures, drawn once.
const std::vector<QImage>& pictures() {
    static const std::vector<QImage> frames = [] {
        std::vector<QImage> made;
        for (int i = 0; i < 30; ++i) {
            QImage picture(kWidth, kHeight, QImage::Format_RGB32);
            QPainter paint(&picture);
            QLinearGradient shade(0, 0, kWidth, kHeight);
            shade.setColorAt(0, QColor(20, 90 + i * 3, 40));
            shade.setColorAt(1, QColor(200, 180, 60 + i * 4));
            paint.fillRect(picture.rect(), shade);
            paint.setBrush(Qt::white);
            paint.drawEllipse(QPoint(40 + i * 18, 240), 30, 30);
            made.push_back(picture);
        }
        return made;
    }();
    return frames;
}

void writer(benchmark::State& state, const Compressor& compressor) {
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("bench.") + compressor.extension);
    const double cpuBefore = cpuSeconds(RUSAGE_SELF);
    for (auto _ : state) {
        VideoFileSettings settings{path,    kWidth,           kHeight,
                                   {30, 1}, compressor.codec, compressor.bitRate};
        MediaError error;
        auto file = VideoFileWriter::open(settings, error);
        if (!file) {
            state.SkipWithError(error.text.toStdString().c_str());
            return;
        }
        for (int i = 0; i < kFrames; ++i) {
            const QImage& picture = pictures()[size_t(i) % pictures().size()];
            if (!file->write(*frameViewOf(picture), i).ok()) {
                state.SkipWithError("write failed");
                return;
            }
        }
        file->finish();
    }
    state.counters["cpu_ms"] = benchmark::Counter((cpuSeconds(RUSAGE_SELF) - cpuBefore) * 1e3,
                                                  benchmark::Counter::kAvgIterations);
    state.counters["fps"] =
        benchmark::Counter(double(kFrames), benchmark::Counter::kIsIterationInvariantRate);
}

// The peer: the ffmpeg command line, the same number of pictures from its test source.
void ffmpegCli(benchmark::State& state, const Compressor& compressor) {
    QTemporaryDir folder;
    const std::string path =
        folder.filePath(QStringLiteral("peer.") + compressor.extension).toStdString();
    std::vector<std::string> args{"ffmpeg",    "-v",
                                  "error",     "-y",
                                  "-f",        "lavfi",
                                  "-i",        "testsrc2=size=640x480:rate=30",
                                  "-frames:v", std::to_string(kFrames)};
    args.insert(args.end(), compressor.ffmpegCodec.begin(), compressor.ffmpegCodec.end());
    args.push_back(path);
    std::vector<char*> argv;
    for (std::string& arg : args) {
        argv.push_back(arg.data());
    }
    argv.push_back(nullptr);
    const double cpuBefore = cpuSeconds(RUSAGE_CHILDREN);
    for (auto _ : state) {
        pid_t pid = 0;
        int status = 0;
        if (posix_spawnp(&pid, "ffmpeg", nullptr, nullptr, argv.data(), environ) != 0 ||
            waitpid(pid, &status, 0) != pid || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
            state.SkipWithError("the ffmpeg command line could not be run");
            return;
        }
    }
    state.counters["cpu_ms"] = benchmark::Counter((cpuSeconds(RUSAGE_CHILDREN) - cpuBefore) * 1e3,
                                                  benchmark::Counter::kAvgIterations);
    state.counters["fps"] =
        benchmark::Counter(double(kFrames), benchmark::Counter::kIsIterationInvariantRate);
}

} // namespace

int main(int argc, char** argv) {
    av_log_set_level(AV_LOG_ERROR);
    pictures(); // drawn before the first job, so that none pays for them
    for (const Compressor& compressor : compressors()) {
        benchmark::RegisterBenchmark((std::string("Writer_") + compressor.name).c_str(), writer,
                                     compressor)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
        benchmark::RegisterBenchmark((std::string("FfmpegCli_") + compressor.name).c_str(),
                                     ffmpegCli, compressor)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    }
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\nWall time of %d frames, ours / the ffmpeg command line's:\n", kFrames);
    for (const Compressor& compressor : compressors()) {
        const std::string name = compressor.name;
        const double ours = reporter.milliseconds["Writer_" + name];
        const double peer = reporter.milliseconds["FfmpegCli_" + name];
        if (ours > 0 && peer > 0) {
            std::printf("  %-10s %7.1f ms / %7.1f ms = %.2f\n", name.c_str(), ours, peer,
                        ours / peer);
        }
    }
    return 0;
}
