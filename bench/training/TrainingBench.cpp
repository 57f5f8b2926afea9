// One tick of a training run (TrainingTick: the scans and the rule) on a 640x480 live frame:
//   WorstCaseTick      grey noise, every pixel unlike the one before it and none of the
//                      target's colour: the first scan converts all 381 x 541 = 206,121
//                      pixels                                           target under 2 ms
//   AbsentColourTick   Demo Camera 1's picture and a colour that isn't in it: a whole scan,
//                      where runs of one colour are converted once
//   VerticalTick       Demo Camera 1's picture, its targets found
//   PerpendicularTick  the same, with the third target
//   ReadRegionBytes    the peer: a plain loop that only reads the bytes of those 206,121 pixels
// At the end a table gives each tick against the peer.

#include "../RatioReporter.h"
#include "platform/media/LiveFrame.h"
#include "platform/media/demo/DemoScene.h"
#include "training/ColourModel.h"
#include "training/TrainingRules.h"

#include <cmath>
#include <cstdio>
#include <map>
#include <random>
#include <string>

#include <QByteArray>
#include <QGuiApplication>

#include <benchmark/benchmark.h>

namespace {

using namespace ravelcue::training;

constexpr std::int64_t kClockMs = 5000; // the wrist well to one side

const QByteArray& DemoFrame() {
    static const QByteArray bytes = [] {
        ravelcue::media::DemoScene scene(1, QSize(640, 480));
        return ravelcue::media::liveFrameBytes(scene.render(0, kClockMs));
    }();
    return bytes;
}

// Greys from 100 to 140 with a little colour: a saturation of 100 is out of reach of all of
// them, and no pixel repeats the one before it.
const QByteArray& NoiseFrame() {
    static const QByteArray bytes = [] {
        QByteArray b(kFrameStride * kFrameHeight, Qt::Uninitialized);
        std::mt19937 random(1);
        std::uniform_int_distribution<int> grey(100, 140);
        std::uniform_int_distribution<int> tint(0, 6);
        int previous = -1;
        for (qsizetype i = 0; i < b.size(); i += 3) {
            int level = grey(random);
            if (level == previous) {
                level = level == 140 ? 100 : level + 1;
            }
            previous = level;
            b[i] = static_cast<char>(level + tint(random));
            b[i + 1] = static_cast<char>(level);
            b[i + 2] = static_cast<char>(level + tint(random));
        }
        return b;
    }();
    return bytes;
}

LiveFrameView View(const QByteArray& bytes = DemoFrame()) {
    return LiveFrameView(
        {reinterpret_cast<const unsigned char*>(bytes.constData()), size_t(bytes.size())});
}

TargetColour ColourOf(QRgb rgb) {
    TargetColour t;
    t.Rthresh = qRed(rgb);
    t.Gthresh = qGreen(rgb);
    t.Bthresh = qBlue(rgb);
    RGBToHSL(t.Rthresh, t.Gthresh, t.Bthresh, t.Hthresh, t.Sthresh, t.Lthresh);
    t.Hthresh = std::round(t.Hthresh);
    t.Sthresh = std::round(t.Sthresh);
    t.Lthresh = std::round(t.Lthresh);
    return t;
}

void Tick(benchmark::State& state, const TargetColour& target, int trainingType,
          const QByteArray& bytes = DemoFrame()) {
    const LiveFrameView frame = View(bytes);
    for (auto _ : state) {
        const TickOutcome tick =
            TrainingTick(frame, target, trainingType, AlarmType::NoSound, kPiValue);
        benchmark::DoNotOptimize(tick.marks.data());
    }
}

void WorstCaseTick(benchmark::State& state) {
    Tick(state, ColourOf(qRgb(0, 0, 255)), kPerpendicularTraining, NoiseFrame());
    state.counters["conversions"] =
        double(kRegionBottom - kRegionTop + 1) * double(kRegionRight - kRegionLeft + 1);
}

// Pure blue: nothing in the demo picture is within reach of it.
void AbsentColourTick(benchmark::State& state) {
    Tick(state, ColourOf(qRgb(0, 0, 255)), kPerpendicularTraining);
}

void VerticalTick(benchmark::State& state) {
    Tick(state, ColourOf(ravelcue::media::kDemoTargetColour), kVerticalTraining);
}

void PerpendicularTick(benchmark::State& state) {
    Tick(state, ColourOf(ravelcue::media::kDemoTargetColour), kPerpendicularTraining);
}

void ReadRegionBytes(benchmark::State& state) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(DemoFrame().constData());
    for (auto _ : state) {
        unsigned sum = 0;
        for (int y = kRegionTop; y <= kRegionBottom; ++y) {
            const unsigned char* row = bytes + (kFrameHeight - 1 - y) * kFrameStride;
            for (int x = kRegionLeft; x <= kRegionRight; ++x) {
                sum += row[x * 3] + row[x * 3 + 1] + row[x * 3 + 2];
            }
        }
        benchmark::DoNotOptimize(sum);
    }
}

BENCHMARK(WorstCaseTick)->Unit(benchmark::kMicrosecond)->MinTime(1.0);
BENCHMARK(AbsentColourTick)->Unit(benchmark::kMicrosecond)->MinTime(1.0);
BENCHMARK(VerticalTick)->Unit(benchmark::kMicrosecond)->MinTime(1.0);
BENCHMARK(PerpendicularTick)->Unit(benchmark::kMicrosecond)->MinTime(1.0);
BENCHMARK(ReadRegionBytes)->Unit(benchmark::kMicrosecond)->MinTime(1.0);

void PrintRatio(const RatioReporter& r, const std::string& ours, const std::string& peer) {
    const auto a = r.milliseconds.find(ours);
    const auto b = r.milliseconds.find(peer);
    if (a != r.milliseconds.end() && b != r.milliseconds.end()) {
        std::printf("  %-18s %8.3f ms (%.3f ms CPU)   %-16s %8.3f ms   ours / peer %6.1fx\n",
                    ours.c_str(), a->second, r.cpuMilliseconds.at(ours), peer.c_str(), b->second,
                    a->second / b->second);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QGuiApplication application(argc, argv); // the demo picture's caption needs fonts
    const TargetColour target = ColourOf(ravelcue::media::kDemoTargetColour);
    const TickOutcome demo =
        TrainingTick(View(), target, kPerpendicularTraining, AlarmType::NoSound, kPiValue);
    const TickOutcome worst = TrainingTick(View(NoiseFrame()), ColourOf(qRgb(0, 0, 255)),
                                           kPerpendicularTraining, AlarmType::NoSound, kPiValue);
    std::printf("Demo Camera 1 at %lld ms: %s targets found, \"%s\"; worst case finds %s\n",
                static_cast<long long>(kClockMs), demo.third ? "three" : "not all",
                demo.alarm.text.c_str(), worst.first ? "a target (not a worst case!)" : "none");
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\nAgainst the peer in this run (target: WorstCaseTick < 2 ms, a frame period "
                "is 33 ms and a tick's period 600 ms)\n");
    PrintRatio(reporter, "WorstCaseTick", "ReadRegionBytes");
    PrintRatio(reporter, "AbsentColourTick", "ReadRegionBytes");
    PrintRatio(reporter, "VerticalTick", "ReadRegionBytes");
    PrintRatio(reporter, "PerpendicularTick", "ReadRegionBytes");
    benchmark::Shutdown();
    return 0;
}
