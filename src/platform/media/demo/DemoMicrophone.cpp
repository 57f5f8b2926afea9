#include "DemoMicrophone.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ravelcue::media {

namespace {

constexpr double kTwoPi = 2 * std::numbers::pi;
constexpr int kRate = DemoSoundSynth::kSampleRate;
// The sound card's delay: the input renders this far behind the clock.
constexpr auto kLatency = std::chrono::milliseconds(50);
constexpr int kBlockFrames = kRate / 10;
constexpr std::int64_t kClickFrames = kRate * 30 / 1000;
constexpr std::int64_t kCrashFrames = kRate * 800 / 1000;
// Enough breaks for an hour of recording.
constexpr int kBreaksKept = 720;

std::uint64_t mix(std::uint64_t x) {
    x += 0x9E3779B97F4A7C15ULL;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ULL;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBULL;
    return x ^ (x >> 31);
}

// A number in [0, 1) that depends on nothing but its arguments.
double uniform(std::uint64_t seed, std::uint64_t stream, std::uint64_t n) {
    return double(mix(seed ^ mix(stream * 1000003ULL + n)) >> 11) * 0x1.0p-53;
}

// White noise in [-1, 1), a pure function of the frame.
double noiseAt(std::uint64_t stream, std::int64_t frame) {
    return uniform(0x5EEDULL, stream, static_cast<std::uint64_t>(frame)) * 2.0 - 1.0;
}

double clickWave(std::int64_t k) {
    // A hard, short knock: about 1.5 ms of decay, gone in 30 ms.
    return DemoSoundSynth::kClickPeak * std::exp(-double(k) / 66.0) *
           std::cos(kTwoPi * 3200.0 * double(k) / kRate);
}

double crashWave(std::int64_t j, std::int64_t absoluteFrame) {
    if (j == 0) {
        return DemoSoundSynth::kCrashPeak;
    }
    // A ring of the balls and a longer rattle of the rack scattering.
    const double ring =
        0.55 * std::exp(-double(j) / 882.0) * std::cos(kTwoPi * 1900.0 * double(j) / kRate);
    const double rattle = 0.45 * std::exp(-double(j) / 2646.0) * noiseAt(7, absoluteFrame);
    return DemoSoundSynth::kCrashPeak * (ring + rattle);
}

std::int16_t clamp16(double value) {
    return static_cast<std::int16_t>(std::clamp(std::lround(value), -32768L, 32767L));
}

// The crash lies on a whole sample, so the speed a break is drawn at is taken to the nearest
// delay a recording can hold; that is the speed the break plays and measures at.
std::int64_t crashDelayFrames(double speedMph) {
    return std::llround(demoBreakDelaySeconds(speedMph) * kRate);
}

double playedSpeed(std::uint64_t seed, int n) {
    const double drawn = 15.0 + 15.0 * uniform(seed, 3, static_cast<std::uint64_t>(n));
    return kDemoBreakDistanceInches * 0.0568 * kRate / double(crashDelayFrames(drawn));
}

} // namespace

DemoBreak demoBreak(std::uint64_t seed, int n) {
    double start = 1.0 + uniform(seed, 1, 0);
    for (int i = 1; i <= n; ++i) {
        start += 4.0 + 2.0 * uniform(seed, 2, static_cast<std::uint64_t>(i));
    }
    return {start, playedSpeed(seed, n)};
}

double demoBreakDelaySeconds(double speedMph) {
    // speed = inches / seconds x 0.0568, turned round.
    return kDemoBreakDistanceInches * 0.0568 / speedMph;
}

void DemoSoundSynth::setBreaks(std::int64_t recordingStartFrame, std::uint64_t seed) {
    breaks_.clear();
    double start = 1.0 + uniform(seed, 1, 0);
    for (int n = 0; n < kBreaksKept; ++n) {
        if (n > 0) {
            start += 4.0 + 2.0 * uniform(seed, 2, static_cast<std::uint64_t>(n));
        }
        const std::int64_t click = recordingStartFrame + std::llround(start * kRate);
        breaks_.push_back({click, click + crashDelayFrames(playedSpeed(seed, n))});
    }
}

void DemoSoundSynth::clearBreaks() {
    breaks_.clear();
}

double DemoSoundSynth::breakSound(std::int64_t frame) const {
    // Breaks lie at least four seconds apart and a crash lasts under one, so only the latest
    // break begun by now can still be heard.
    auto after = std::upper_bound(breaks_.begin(), breaks_.end(), frame,
                                  [](std::int64_t f, const Break& b) { return f < b.click; });
    if (after == breaks_.begin()) {
        return 0;
    }
    const Break& latest = *std::prev(after);
    double sound = 0;
    if (frame - latest.click < kClickFrames) {
        sound += clickWave(frame - latest.click);
    }
    if (frame >= latest.crash && frame - latest.crash < kCrashFrames) {
        sound += crashWave(frame - latest.crash, frame);
    }
    return sound;
}

void DemoSoundSynth::render(std::int64_t firstFrame, int frames,
                            const std::vector<ToneFrames>& tones, std::int16_t* out) const {
    for (int i = 0; i < frames; ++i) {
        const std::int64_t frame = firstFrame + i;
        double sound = breakSound(frame);
        for (const ToneFrames& tone : tones) {
            const double x = double(frame) - tone.firstFrame;
            if (x >= 0 && x < tone.frames) {
                sound += kTonePeak * std::sin(kTwoPi * tone.frequencyHz * x / kRate);
            }
        }
        out[2 * i] = clamp16(sound + kNoisePeak * noiseAt(1, frame));
        out[2 * i + 1] = clamp16(0.8 * sound + kNoisePeak * noiseAt(2, frame));
    }
}

DemoMicrophoneInput::DemoMicrophoneInput(const ToneBus& tones,
                                         std::function<std::uint64_t()> nextSeed)
    : tones_(tones)
    , nextSeed_(std::move(nextSeed)) {}

DemoMicrophoneInput::~DemoMicrophoneInput() {
    stop();
}

std::int64_t DemoMicrophoneInput::frameAt(CaptureClock::Clock::time_point t) const {
    return static_cast<std::int64_t>(
        std::floor(std::chrono::duration<double>(t - origin_).count() * kRate));
}

bool DemoMicrophoneInput::start(Sink sink) {
    stop();
    std::lock_guard lock(mutex_);
    sink_ = std::move(sink);
    origin_ = CaptureClock::now();
    delivered_ = 0;
    thread_ = std::jthread([this](std::stop_token stop) { run(stop); });
    return true;
}

void DemoMicrophoneInput::stop() {
    if (thread_.joinable()) {
        thread_.request_stop();
        thread_.join();
    }
    std::lock_guard lock(mutex_);
    sink_ = nullptr;
}

std::int64_t DemoMicrophoneInput::frameNow() const {
    std::lock_guard lock(mutex_);
    return frameAt(CaptureClock::now());
}

void DemoMicrophoneInput::catchUp() {
    std::lock_guard lock(mutex_);
    deliverUpTo(frameAt(CaptureClock::now()));
}

void DemoMicrophoneInput::recordingStarted(std::int64_t firstFrame) {
    const std::uint64_t seed = nextSeed_();
    std::lock_guard lock(mutex_);
    synth_.setBreaks(firstFrame, seed);
}

void DemoMicrophoneInput::recordingStopped() {
    std::lock_guard lock(mutex_);
    synth_.clearBreaks();
}

void DemoMicrophoneInput::deliverUpTo(std::int64_t end) {
    using Duration = CaptureClock::Clock::duration;
    auto timeOf = [this](std::int64_t frame) {
        return origin_ + std::chrono::duration_cast<Duration>(
                             std::chrono::duration<double>(double(frame) / kRate));
    };
    while (sink_ && delivered_ < end) {
        const int frames = static_cast<int>(std::min<std::int64_t>(end - delivered_, kBlockFrames));
        std::vector<DemoSoundSynth::ToneFrames> tones;
        for (const ToneBus::Tone& tone :
             tones_.tonesDuring(timeOf(delivered_), timeOf(delivered_ + frames))) {
            tones.push_back({tone.frequencyHz,
                             std::chrono::duration<double>(tone.start - origin_).count() * kRate,
                             std::chrono::duration<double>(tone.duration).count() * kRate});
        }
        buffer_.resize(size_t(frames) * 2);
        synth_.render(delivered_, frames, tones, buffer_.data());
        sink_(delivered_, buffer_.data(), frames);
        delivered_ += frames;
    }
}

void DemoMicrophoneInput::run(std::stop_token stop) {
    std::unique_lock lock(mutex_);
    while (!stop.stop_requested()) {
        wake_.wait_for(lock, stop, std::chrono::milliseconds(10), [] { return false; });
        if (stop.stop_requested()) {
            return;
        }
        deliverUpTo(frameAt(CaptureClock::now() - kLatency));
    }
}

} // namespace ravelcue::media
