// Hours of use in one process, watched for leaks: four demo cameras recording to MJPEG AVI while
// their views are shown, then four players looping those recordings as a Set at x4. Every minute
// it prints the resident memory and the open file descriptors of the process and, while
// recording, the frames written and dropped. At the end of each part: growth of the resident
// memory from the end of the settling minutes to the end of the part, the largest open file
// count, and the dropped frames, against the targets.
//
//   ravelcue_soak [--record-minutes N] [--play-minutes N] [--settle-minutes N] [--folder DIR]
//   (30, 30 and 5 by default; a brief trial: --record-minutes 2 --play-minutes 2 --settle 1)
//   QT_QPA_PLATFORM=offscreen unless set. The recordings are deleted at the end unless --folder.

#include "core/ToneBus.h"
#include "platform/media/CaptureInstance.h"
#include "platform/media/DeviceCatalog.h"
#include "platform/media/PlayerInstance.h"
#include "platform/media/VideoView.h"
#include "platform/media/demo/DemoScene.h"
#include "platform/media/ffmpeg/FfmpegEngine.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QGridLayout>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>

using namespace ravelcue;
using namespace ravelcue::media;

namespace {

struct Options {
    int recordMinutes = 30;
    int playMinutes = 30;
    int settleMinutes = 5;
    QString folder;
};

std::optional<Options> parse(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const bool hasValue = i + 1 < argc;
        const std::string name = argv[i];
        if (!hasValue) {
            return std::nullopt;
        }
        const char* value = argv[++i];
        if (name == "--record-minutes") {
            options.recordMinutes = std::max(1, std::atoi(value));
        } else if (name == "--play-minutes") {
            options.playMinutes = std::max(0, std::atoi(value));
        } else if (name == "--settle-minutes") {
            options.settleMinutes = std::max(0, std::atoi(value));
        } else if (name == "--folder") {
            options.folder = QString::fromLocal8Bit(value);
        } else {
            return std::nullopt;
        }
    }
    return options;
}

// VmRSS of /proc/self/status in KiB, 0 where there is no such file.
long residentKiB() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) {
        return 0;
    }
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:")) {
            return line.mid(6).trimmed().split(' ').value(0).toLong();
        }
    }
    return 0;
}

int openFileDescriptors() {
    return int(QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::Files | QDir::System).size());
}

double loadAverage() {
    double load[1] = {0};
    return getloadavg(load, 1) == 1 ? load[0] : -1;
}

void waitMs(int ms) {
    QEventLoop loop;
    QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

struct Sample {
    long residentKiB = 0;
    int files = 0;
};

// Runs `minutes` minutes of a part, printing a line a minute (with `extra` appended), and
// reports growth from the end of the settling minutes against the targets.
struct PartReport {
    double growthPercent = 0;
    int mostFiles = 0;
};

PartReport runPart(const char* title, int minutes, int settleMinutes,
                   const std::function<std::string()>& extra) {
    std::printf("\n%s, %d minutes\n", title, minutes);
    std::vector<Sample> samples;
    const auto start = std::chrono::steady_clock::now();
    for (int minute = 1; minute <= minutes; ++minute) {
        const auto due = start + std::chrono::minutes(minute);
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            due - std::chrono::steady_clock::now());
        waitMs(int(std::max<std::int64_t>(0, left.count())));
        samples.push_back({residentKiB(), openFileDescriptors()});
        std::printf("  minute %3d: resident %7.1f MiB, %3d open files, load %.2f%s\n", minute,
                    double(samples.back().residentKiB) / 1024, samples.back().files, loadAverage(),
                    extra().c_str());
        std::fflush(stdout);
    }
    PartReport report;
    const int base = std::clamp(settleMinutes, 1, minutes) - 1;
    const long from = samples[size_t(base)].residentKiB;
    const long to = samples.back().residentKiB;
    report.growthPercent = from > 0 ? 100.0 * double(to - from) / double(from) : 0;
    for (const Sample& sample : samples) {
        report.mostFiles = std::max(report.mostFiles, sample.files);
    }
    std::printf("  resident memory from minute %d to minute %d: %.1f -> %.1f MiB, growth %.2f%% "
                "(target < 5%%); open files at most %d (%d after minute %d)\n",
                base + 1, minutes, double(from) / 1024, double(to) / 1024, report.growthPercent,
                report.mostFiles, samples.back().files, minutes);
    return report;
}

QString recordingPath(const QString& folder, int camera) {
    return QDir(folder).filePath(QStringLiteral("soak_%1.avi").arg(camera + 1));
}

struct Window {
    QWidget widget;
    QGridLayout* grid = new QGridLayout(&widget);
    Window() { widget.resize(800, 600); }
};

int recordPart(ffmpeg::FfmpegEngine& engine, const Options& options, const QString& folder) {
    DeviceCatalog& devices = engine.devices();
    const int firstDemo = devices.VideoDeviceCount() - kDemoCameraCount;
    Window window;
    std::vector<std::unique_ptr<CaptureInstance>> cameras;
    for (int i = 0; i < kDemoCameraCount; ++i) {
        auto camera = engine.createCapture(i);
        camera->SetVideoDevice(firstDemo + i);
        camera->SetCaptureFrameRate(30);
        camera->SetVideoSize(640, 480);
        camera->SetConnected(true);
        camera->SetPreview(true);
        camera->SetCompressorIndex(0); // MJPEG
        camera->SetCaptureFile(recordingPath(folder, i));
        window.grid->addWidget(camera->view(), i / 2, i % 2);
        cameras.push_back(std::move(camera));
    }
    window.widget.show();
    int failures = 0;
    for (auto& camera : cameras) {
        QObject::connect(camera.get(), &CaptureInstance::captureFailed,
                         [&failures](const MediaError& error) {
                             ++failures;
                             std::printf("  recording failed: %s\n", qPrintable(error.text));
                         });
        const MediaError started = camera->StartCapture();
        if (!started.ok()) {
            std::printf("  cannot record: %s\n", qPrintable(started.text));
            return -1;
        }
    }
    auto counts = [&] {
        int written = 0;
        int dropped = 0;
        for (auto& camera : cameras) {
            const CaptureStats stats = camera->GetCaptureStats();
            written += stats.framesWritten;
            dropped += stats.framesDropped;
        }
        return std::make_pair(written, dropped);
    };
    runPart("Four demo cameras, 640x480, 30 fps, recording to MJPEG AVI and previewed",
            options.recordMinutes, options.settleMinutes, [&] {
                const auto [written, dropped] = counts();
                return ", " + std::to_string(written) + " frames written, " +
                       std::to_string(dropped) + " dropped";
            });
    for (auto& camera : cameras) {
        camera->StopCapture();
    }
    const int dropped = counts().second;
    std::printf("  dropped frames: %d (target 0); recordings ended on their own: %d\n", dropped,
                failures);
    for (auto& camera : cameras) {
        camera->view()->setParent(nullptr);
        camera->SetConnected(false);
    }
    return dropped;
}

void playPart(ffmpeg::FfmpegEngine& engine, const Options& options, const QString& folder) {
    Window window;
    std::vector<std::unique_ptr<PlayerInstance>> players;
    for (int i = 0; i < kDemoCameraCount; ++i) {
        auto player = engine.createPlayer(i);
        const MediaError opened = player->PlayerOpen(recordingPath(folder, i));
        if (!opened.ok()) {
            std::printf("  cannot open %s: %s\n", qPrintable(recordingPath(folder, i)),
                        qPrintable(opened.text));
            return;
        }
        window.grid->addWidget(player->view(), i / 2, i % 2);
        players.push_back(std::move(player));
    }
    window.widget.show();
    int loops = 0;
    // As the window loops a Set: the first member to end takes them all back to the start.
    for (auto& player : players) {
        QObject::connect(player.get(), &PlayerInstance::PlayerEnd, [&] {
            ++loops;
            for (auto& member : players) {
                member->PlayerSetPos(0.0);
            }
        });
        player->PlayerSetRate(4.0);
    }
    for (auto& player : players) {
        player->PlayerPlay();
    }
    runPart("Four players looping the recordings as a Set at x4", options.playMinutes,
            options.settleMinutes, [&] { return ", " + std::to_string(loops) + " loops"; });
    for (auto& player : players) {
        player->PlayerStop();
        player->PlayerClose();
        player->view()->setParent(nullptr);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (std::getenv("QT_QPA_PLATFORM") == nullptr) {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    }
    QApplication app(argc, argv);
    const std::optional<Options> options = parse(argc, argv);
    if (!options) {
        std::fprintf(stderr,
                     "usage: %s [--record-minutes N] [--play-minutes N] "
                     "[--settle-minutes N] [--folder DIR]\n",
                     argv[0]);
        return 2;
    }
    QTemporaryDir temporary;
    const QString folder = options->folder.isEmpty() ? temporary.path() : options->folder;
    QDir().mkpath(folder);
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    std::printf("Soak: %d minutes recording, %d minutes playing, growth measured from minute %d; "
                "load average %.2f at the start (the machine is shared: read the figures with "
                "it in mind)\n",
                options->recordMinutes, options->playMinutes, options->settleMinutes,
                loadAverage());
    std::printf("At the start: resident %.1f MiB, %d open files\n", double(residentKiB()) / 1024,
                openFileDescriptors());
    ToneBus tones;
    ffmpeg::FfmpegEngine engine(tones);
    const int dropped = recordPart(engine, *options, folder);
    if (dropped < 0) {
        return 1;
    }
    if (options->playMinutes > 0) {
        playPart(engine, *options, folder);
    }
    std::printf("\nAt the end: resident %.1f MiB, %d open files, load average %.2f\n",
                double(residentKiB()) / 1024, openFileDescriptors(), loadAverage());
    return 0;
}
