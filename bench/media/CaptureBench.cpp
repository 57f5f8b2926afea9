// Four demo cameras at 640x480, 30 fps, recorded to MJPEG AVI while their views are shown, then
// one at 1920x1080. For each: frames dropped (as counted, and as found in the file), the spread
// of the first frames' clocks across the set, and the process's CPU time, beside the ffmpeg
// command line encoding as many 30 fps test streams to MJPEG in real time (-re).
//
//   ravelcue_capture_bench [seconds] [quad|hd]
//   (20 seconds and both runs by default; QT_QPA_PLATFORM=offscreen unless set)

#include "core/ToneBus.h"
#include "platform/media/CaptureClock.h"
#include "platform/media/CaptureInstance.h"
#include "platform/media/DeviceCatalog.h"
#include "platform/media/VideoView.h"
#include "platform/media/demo/DemoStamp.h"
#include "platform/media/ffmpeg/FfmpegEngine.h"
#include "platform/media/ffmpeg/FfmpegPtr.h"
#include "platform/media/ffmpeg/ImageFrames.h"

#include <cstdio>
#include <cstdlib>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <vector>

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QGridLayout>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>

extern char** environ;

using namespace ravelcue;
using namespace ravelcue::media;

namespace {

double cpuSeconds(const rusage& usage) {
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

double processCpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return cpuSeconds(usage);
}

void waitMs(int ms) {
    QEventLoop loop;
    // Precise: a coarse timer may fire up to 5% early.
    QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

double loadAverage() {
    double load[1] = {0};
    return getloadavg(load, 1) == 1 ? load[0] : -1;
}

struct FileReading {
    int frames = 0;
    int unreadable = 0;
    int gaps = 0; // frames missing between consecutive counters
    std::uint32_t firstClockMs = 0;
};

// Decodes a recorded file and reads the stamp of every frame.
FileReading readBack(const QString& path) {
    using namespace ravelcue::media::ffmpeg;
    FileReading reading;
    AVFormatContext* raw = nullptr;
    if (avformat_open_input(&raw, path.toUtf8().constData(), nullptr, nullptr) < 0) {
        return reading;
    }
    InputContextPtr input(raw);
    avformat_find_stream_info(raw, nullptr);
    const AVCodec* codec = nullptr;
    const int stream = av_find_best_stream(raw, AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    if (stream < 0) {
        return reading;
    }
    CodecContextPtr decoder(avcodec_alloc_context3(codec));
    avcodec_parameters_to_context(decoder.get(), raw->streams[stream]->codecpar);
    avcodec_open2(decoder.get(), codec, nullptr);
    PacketPtr packet = makePacket();
    FramePtr frame = makeFrame();
    SwsPtr converter;
    std::int64_t lastCounter = -1;
    auto take = [&] {
        while (avcodec_receive_frame(decoder.get(), frame.get()) == 0) {
            const DemoStamp stamp = readDemoStamp(imageOf(*frame, converter));
            ++reading.frames;
            if (!stamp.valid) {
                ++reading.unreadable;
                continue;
            }
            if (lastCounter < 0) {
                reading.firstClockMs = stamp.clockMs;
            } else if (stamp.frameCounter > lastCounter + 1) {
                reading.gaps += int(stamp.frameCounter - lastCounter - 1);
            }
            lastCounter = stamp.frameCounter;
        }
    };
    while (av_read_frame(raw, packet.get()) >= 0) {
        if (packet->stream_index == stream) {
            avcodec_send_packet(decoder.get(), packet.get());
            take();
        }
        av_packet_unref(packet.get());
    }
    avcodec_send_packet(decoder.get(), nullptr);
    take();
    return reading;
}

struct SetResult {
    std::vector<CaptureStats> stats;
    std::vector<FileReading> files;
    double cpuSeconds = 0;
    double wallSeconds = 0;
};

// Records cameras 1..count as the window does: start and hold, two seconds, release together.
SetResult recordSet(ffmpeg::FfmpegEngine& engine, int count, QSize size, int seconds,
                    const QString& folder) {
    DeviceCatalog& devices = engine.devices();
    const int firstDemo = devices.VideoDeviceCount() - 4;
    QWidget window;
    auto* grid = new QGridLayout(&window);
    std::vector<std::unique_ptr<CaptureInstance>> cameras;
    for (int i = 0; i < count; ++i) {
        auto camera = engine.createCapture(i);
        camera->SetVideoDevice(firstDemo + i);
        camera->SetCaptureFrameRate(30);
        camera->SetConnected(true);
        camera->SetVideoSize(size.width(), size.height());
        camera->SetPreview(true);
        camera->SetCompressorIndex(0); // MJPEG
        camera->SetCaptureFile(QDir(folder).filePath(QStringLiteral("bench%1.avi").arg(i + 1)));
        grid->addWidget(camera->view(), i / 2, i % 2);
        cameras.push_back(std::move(camera));
    }
    window.resize(800, 600);
    window.show();
    for (auto& camera : cameras) {
        camera->StartCapture();
        camera->PauseCapture();
    }
    waitMs(2000);
    SetResult result;
    const double cpuBefore = processCpuSeconds();
    const auto wallBefore = CaptureClock::now();
    for (auto& camera : cameras) {
        camera->ResumeCapture();
    }
    waitMs(seconds * 1000);
    for (auto& camera : cameras) {
        camera->StopCapture();
    }
    result.cpuSeconds = processCpuSeconds() - cpuBefore;
    result.wallSeconds = std::chrono::duration<double>(CaptureClock::now() - wallBefore).count();
    for (int i = 0; i < count; ++i) {
        result.stats.push_back(cameras[size_t(i)]->GetCaptureStats());
        cameras[size_t(i)]->view()->setParent(nullptr);
        cameras[size_t(i)]->SetConnected(false);
    }
    cameras.clear();
    for (int i = 0; i < count; ++i) {
        result.files.push_back(
            readBack(QDir(folder).filePath(QStringLiteral("bench%1.avi").arg(i + 1))));
    }
    return result;
}

// The ffmpeg command line encoding count test streams of that size to MJPEG in real time; its
// CPU seconds, or -1 when it could not run.
double peerCpuSeconds(int count, QSize size, int seconds, const QString& folder) {
    std::vector<std::string> args = {"ffmpeg", "-v", "error", "-y"};
    const std::string source = "testsrc2=size=" + std::to_string(size.width()) + "x" +
                               std::to_string(size.height()) + ":rate=30";
    for (int i = 0; i < count; ++i) {
        args.insert(args.end(),
                    {"-re", "-f", "lavfi", "-t", std::to_string(seconds), "-i", source});
    }
    for (int i = 0; i < count; ++i) {
        args.insert(args.end(),
                    {"-map", std::to_string(i) + ":v", "-c:v", "mjpeg", "-q:v", "4", "-threads",
                     "1",
                     QDir(folder).filePath(QStringLiteral("peer%1.avi").arg(i)).toStdString()});
    }
    std::vector<char*> argv;
    for (std::string& arg : args) {
        argv.push_back(arg.data());
    }
    argv.push_back(nullptr);
    pid_t pid = 0;
    if (posix_spawnp(&pid, "ffmpeg", nullptr, nullptr, argv.data(), environ) != 0) {
        return -1;
    }
    int status = 0;
    rusage usage{};
    if (wait4(pid, &status, 0, &usage) != pid || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        return -1;
    }
    return cpuSeconds(usage);
}

void report(const char* title, const SetResult& set, double peerCpu) {
    std::printf("\n%s\n", title);
    std::uint32_t earliest = UINT32_MAX;
    std::uint32_t latest = 0;
    for (size_t i = 0; i < set.stats.size(); ++i) {
        const FileReading& file = set.files[i];
        std::printf("  camera %zu: %d frames written, %d dropped (counted), %d missing in the "
                    "file, %d unreadable, first frame at %u ms\n",
                    i + 1, set.stats[i].framesWritten, set.stats[i].framesDropped, file.gaps,
                    file.unreadable, file.firstClockMs);
        earliest = std::min(earliest, file.firstClockMs);
        latest = std::max(latest, file.firstClockMs);
    }
    if (set.stats.size() > 1) {
        std::printf("  sync offset (spread of first-frame clocks): %u ms (target <= 33)\n",
                    latest - earliest);
    }
    std::printf("  CPU: %.2f s over %.2f s = %.2f cores (target < 1.00)\n", set.cpuSeconds,
                set.wallSeconds, set.cpuSeconds / set.wallSeconds);
    if (peerCpu >= 0) {
        std::printf("  peer, ffmpeg -re lavfi -> MJPEG, same streams: %.2f s CPU = %.2f cores; "
                    "ratio ours / peer: %.2f\n",
                    peerCpu, peerCpu / set.wallSeconds, set.cpuSeconds / peerCpu);
    } else {
        std::printf("  peer: the ffmpeg command line could not be run\n");
    }
}

} // namespace

int main(int argc, char** argv) {
    if (std::getenv("QT_QPA_PLATFORM") == nullptr) {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    }
    QApplication app(argc, argv);
    const int seconds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 20;
    QTemporaryDir folder;
    ToneBus tones;
    const auto listing = CaptureClock::now();
    ffmpeg::FfmpegEngine engine(tones);
    engine.devices().refresh();
    const double listingMs =
        std::chrono::duration<double, std::milli>(CaptureClock::now() - listing).count() / 2;
    std::printf("Capture benchmark: %d s a run, load average %.2f at the start\n", seconds,
                loadAverage());
    std::printf("Listing the devices: %.1f ms (%d cameras, %d microphones, demo devices "
                "included)\n",
                listingMs, engine.devices().VideoDeviceCount(),
                engine.devices().AudioDeviceCount());

    const QString only = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QString();
    if (only.isEmpty() || only == QLatin1String("quad")) {
        const SetResult quad = recordSet(engine, 4, QSize(640, 480), seconds, folder.path());
        const double quadPeer = peerCpuSeconds(4, QSize(640, 480), seconds, folder.path());
        report("Four demo cameras, 640x480, 30 fps, MJPEG, previewed", quad, quadPeer);
    }
    if (only.isEmpty() || only == QLatin1String("hd")) {
        const SetResult hd = recordSet(engine, 1, QSize(1920, 1080), seconds, folder.path());
        const double hdPeer = peerCpuSeconds(1, QSize(1920, 1080), seconds, folder.path());
        report("One demo camera, 1920x1080, 30 fps, MJPEG, previewed", hd, hdPeer);
    }
    std::printf("\nLoad average %.2f at the end (the machine is shared; read CPU figures with "
                "it in mind)\n",
                loadAverage());
    return 0;
}
