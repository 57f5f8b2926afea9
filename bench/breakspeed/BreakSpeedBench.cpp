// A 60.5 s recording, the longest a capture makes, read and measured, and drawn into an 800
// pixel wide Picture1. Each job runs beside a peer that does the same the plain way:
//   LoadAndDetect   LoadAudioFile + DetectPeaks          target under 20 ms
//     FreadAndScan    one fread and one pass for the loudest word
//   DrawPicture1    WaveformBox::DrawWaveform            target under 16 ms (a frame at 60 Hz)
//     QPainterEveryLine  QPainter::drawLine for each of the 2.7 million lines
//     QPainterPolyline   one QPainter::drawPolyline through every point
// At the end a table gives each job against its peers.

#include "../RatioReporter.h"
#include "breakspeed/AudioAnalysis.h"
#include "breakspeed/Waveform.h"
#include "breakspeed/WaveformBox.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QPointF>

#include <benchmark/benchmark.h>

namespace {

using namespace ravelcue::breakspeed;

constexpr int kWords = 5336100; // 60.5 s x 44100 frames x 2 channels
constexpr int kWidth = 800;
constexpr int kHeight = 284;

// Room noise on both channels and two shots 0.1 s apart in the middle.
const AudioSamples& Recording() {
    static const AudioSamples samples = [] {
        AudioSamples s(kWords);
        std::mt19937 random(1);
        std::normal_distribution<double> noise(0, 150);
        for (auto& word : s) {
            word = static_cast<std::int16_t>(noise(random));
        }
        for (const int at : {2000000, 2008820}) {
            for (int i = 0; i < 2000; ++i) {
                s[static_cast<size_t>(at + i)] =
                    static_cast<std::int16_t>(i % 4 < 2 ? 20000 : -20000);
            }
        }
        return s;
    }();
    return samples;
}

const std::filesystem::path& RecordingFile() {
    static const std::filesystem::path path = [] {
        const auto p = std::filesystem::temp_directory_path() / "ravelcue-bench-breakspeed.wav";
        std::ofstream out(p, std::ios::binary);
        out.write(reinterpret_cast<const char*>(Recording().data()),
                  static_cast<std::streamsize>(Recording().size() * 2));
        return p;
    }();
    return path;
}

void LoadAndDetect(benchmark::State& state) {
    const std::string path = RecordingFile().string();
    for (auto _ : state) {
        const LoadedAudio audio = LoadAudioFile(path);
        const PeakDetection d = DetectPeaks(audio.samples, 2, "48", SpeedSettings{});
        benchmark::DoNotOptimize(d.deltaTime);
    }
    state.SetBytesProcessed(state.iterations() * kWords * 2);
}

void FreadAndScan(benchmark::State& state) {
    const std::string path = RecordingFile().string();
    for (auto _ : state) {
        std::vector<std::int16_t> words(kWords);
        std::FILE* file = std::fopen(path.c_str(), "rb");
        const size_t got = std::fread(words.data(), 2, words.size(), file);
        std::fclose(file);
        int loudest = 0;
        for (size_t i = 0; i < got; i += 2) {
            loudest = std::max(loudest, static_cast<int>(words[i]));
        }
        benchmark::DoNotOptimize(loudest);
    }
    state.SetBytesProcessed(state.iterations() * kWords * 2);
}

// Picture1 itself: the scale, the per-column spans and their lines in the box's drawing.
void DrawPicture1(benchmark::State& state) {
    const AudioSamples& samples = Recording();
    WaveformBox box(nullptr, "Picture1", "Captured Audio", "Shape1");
    box.resize(kWidth + 2, kHeight + 2); // a one-pixel border around the drawing
    for (auto _ : state) {
        box.DrawWaveform(samples, WaveformScaleHeight(samples), 0, kWords);
        benchmark::DoNotOptimize(box.canvas().constBits());
    }
    state.counters["width"] = box.canvas().width();
}

// The scale as the box would set it, for the peers: words across, twice the loudest down.
QTransform BoxScale(const AudioSamples& samples) {
    const double scaleHeight = WaveformScaleHeight(samples);
    return QTransform::fromScale(double(kWidth) / kWords, kHeight / scaleHeight).translate(0, 0);
}

void QPainterEveryLine(benchmark::State& state) {
    const AudioSamples& samples = Recording();
    const double middle = WaveformScaleHeight(samples) / 2.0;
    QImage box(kWidth, kHeight, QImage::Format_RGB32);
    for (auto _ : state) {
        box.fill(QColor(224, 224, 224));
        QPainter painter(&box);
        painter.setPen(QPen(Qt::black, 0));
        painter.setTransform(BoxScale(samples));
        QPointF previous(0, middle);
        for (size_t i = 0; i < samples.size(); i += 2) {
            const QPointF point(double(i), middle + samples[i]);
            painter.drawLine(previous, point);
            previous = point;
        }
        painter.end();
        benchmark::DoNotOptimize(box.constBits());
    }
}

void QPainterPolyline(benchmark::State& state) {
    const AudioSamples& samples = Recording();
    const double middle = WaveformScaleHeight(samples) / 2.0;
    QImage box(kWidth, kHeight, QImage::Format_RGB32);
    for (auto _ : state) {
        box.fill(QColor(224, 224, 224));
        std::vector<QPointF> points;
        points.reserve(samples.size() / 2 + 1);
        points.emplace_back(0, middle);
        for (size_t i = 0; i < samples.size(); i += 2) {
            points.emplace_back(double(i), middle + samples[i]);
        }
        QPainter painter(&box);
        painter.setPen(QPen(Qt::black, 0));
        painter.setTransform(BoxScale(samples));
        painter.drawPolyline(points.data(), static_cast<int>(points.size()));
        painter.end();
        benchmark::DoNotOptimize(box.constBits());
    }
}

BENCHMARK(LoadAndDetect)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(FreadAndScan)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(DrawPicture1)->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(QPainterEveryLine)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(QPainterPolyline)->Unit(benchmark::kMillisecond)->Iterations(3);

void PrintRatio(const RatioReporter& r, const std::string& ours, const std::string& peer) {
    const auto a = r.milliseconds.find(ours);
    const auto b = r.milliseconds.find(peer);
    if (a != r.milliseconds.end() && b != r.milliseconds.end()) {
        std::printf("  %-16s %9.2f ms   %-20s %9.2f ms   peer / ours %7.2fx\n", ours.c_str(),
                    a->second, peer.c_str(), b->second, b->second / a->second);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf(
        "\nAgainst peers in this run (targets: LoadAndDetect < 20 ms, DrawPicture1 < 16 ms)\n");
    PrintRatio(reporter, "LoadAndDetect", "FreadAndScan");
    PrintRatio(reporter, "DrawPicture1", "QPainterEveryLine");
    PrintRatio(reporter, "DrawPicture1", "QPainterPolyline");
    std::error_code ignored;
    std::filesystem::remove(RecordingFile(), ignored);
    benchmark::Shutdown();
    return 0;
}
