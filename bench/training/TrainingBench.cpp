// One tick of a training run (TrainingTick: the scans and the rule) on a 640x480 live frame:
//   WorstCaseTick      no pixel of the target's colour, and every one as close to it as can be
//                      without a match: saturation and lightness within reach, the hue within
//                      60 degrees of the target's but outside its reach, the largest channel
//                      changing at random, and each pixel unlike the one before it. The first
//                      scan takes the hue test for all 381 x 541 = 206,121 pixels
//                                                                       target under 2 ms
//   GreyNoiseTick      grey noise, every pixel unlike the one before it and none of the
//                      target's colour, all turned away by saturation and lightness
//   AbsentColourTick   Demo Camera 1's picture and a colour that isn't in it: a whole scan,
//                      where runs of one colour are judged once
//   VerticalTick       Demo Camera 1's picture, its targets found
//   PerpendicularTick  the same, with the third target
//   ReadRegionBytes    the peer: a plain loop that only reads the bytes of those 206,121 pixels
// At the end a table gives each tick against the peer, in CPU time: the machine may be shared.

#include "../RatioReporter.h"
#include "platform/media/LiveFrame.h"
#include "platform/media/demo/DemoScene.h"
#include "training/ColourModel.h"
#include "training/TargetMatcher.h"
#include "training/TrainingRules.h"

#include <cmath>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

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

// The worst case's target: yellow, hue 60, where the sixths of red and of green meet.
QRgb WorstTargetColour() {
    return qRgb(255, 255, 0);
}

// Colours with the target's saturation and lightness in reach and a hue within 60 degrees of it,
// red or green the largest channel by turns, but none of them a match: every one takes the whole
// hue test.
const QByteArray& NearHueFrame() {
    static const QByteArray bytes = [] {
        const TargetColour target = ColourOf(WorstTargetColour());
        std::vector<Rgb> near;
        for (int r = 0; r < 256; r += 3) {
            for (int g = 0; g < 256; g += 3) {
                for (int b = 0; b < 256; b += 3) {
                    float h = 0.0f;
                    float s = 0.0f;
                    float l = 0.0f;
                    RGBToHSL(r, g, b, h, s, l);
                    if (std::fabs(h - target.Hthresh) <= 60.0f &&
                        reach::saturationAndLightness(target, s, l) &&
                        !Matches(target, {r, g, b})) {
                        near.push_back({r, g, b});
                    }
                }
            }
        }
        QByteArray f(kFrameStride * kFrameHeight, Qt::Uninitialized);
        std::mt19937 random(1);
        std::uniform_int_distribution<std::size_t> pick(0, near.size() - 1);
        for (qsizetype i = 0; i < f.size(); i += 3) {
            const Rgb c = near[pick(random)];
            f[i] = static_cast<char>(c.b);
            f[i + 1] = static_cast<char>(c.g);
            f[i + 2] = static_cast<char>(c.r);
        }
        return f;
    }();
    return bytes;
}

LiveFrameView View(const QByteArray& bytes = DemoFrame()) {
    return LiveFrameView(
        {reinterpret_cast<const unsigned char*>(bytes.constData()), size_t(bytes.size())});
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

constexpr double kRegionPixels =
    double(kRegionBottom - kRegionTop + 1) * double(kRegionRight - kRegionLeft + 1);

void WorstCaseTick(benchmark::State& state) {
    Tick(state, ColourOf(WorstTargetColour()), kPerpendicularTraining, NearHueFrame());
    state.counters["hues"] = kRegionPixels;
}

void GreyNoiseTick(benchmark::State& state) {
    Tick(state, ColourOf(qRgb(0, 0, 255)), kPerpendicularTraining, NoiseFrame());
    state.counters["pixels"] = kRegionPixels;
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
BENCHMARK(GreyNoiseTick)->Unit(benchmark::kMicrosecond)->MinTime(1.0);
BENCHMARK(AbsentColourTick)->Unit(benchmark::kMicrosecond)->MinTime(1.0);
BENCHMARK(VerticalTick)->Unit(benchmark::kMicrosecond)->MinTime(1.0);
BENCHMARK(PerpendicularTick)->Unit(benchmark::kMicrosecond)->MinTime(1.0);
BENCHMARK(ReadRegionBytes)->Unit(benchmark::kMicrosecond)->MinTime(1.0);

void PrintRatio(const RatioReporter& r, const std::string& ours, const std::string& peer) {
    const auto a = r.cpuMilliseconds.find(ours);
    const auto b = r.cpuMilliseconds.find(peer);
    if (a != r.cpuMilliseconds.end() && b != r.cpuMilliseconds.end()) {
        std::printf(
            "  %-18s %8.3f ms CPU (%.3f ms wall)   %-16s %8.3f ms CPU   ours / peer %6.1fx\n",
            ours.c_str(), a->second, r.milliseconds.at(ours), peer.c_str(), b->second,
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
    const TickOutcome worst = TrainingTick(View(NearHueFrame()), ColourOf(WorstTargetColour()),
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
    PrintRatio(reporter, "GreyNoiseTick", "ReadRegionBytes");
    PrintRatio(reporter, "AbsentColourTick", "ReadRegionBytes");
    PrintRatio(reporter, "VerticalTick", "ReadRegionBytes");
    PrintRatio(reporter, "PerpendicularTick", "ReadRegionBytes");
    benchmark::Shutdown();
    return 0;
}
