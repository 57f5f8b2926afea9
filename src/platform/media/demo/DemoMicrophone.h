#pragma once

#include "../CaptureClock.h"
#include "../audio/MicrophoneInput.h"
#include "core/ToneBus.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace ravelcue::media {

// The demo microphone's breaks. While it records, a break sounds every few seconds: the click of
// the tip on the cue ball, then the crash of the cue ball into the rack after the time a ball at
// speedMph takes over 48 inches less its own 2.25-inch diameter.
struct DemoBreak {
    double startSeconds = 0; // the click, from the start of the recording
    double speedMph = 0;     // 15 to 30, as played: the crash lies on the sample it gives
};

inline constexpr double kDemoBreakDistanceInches = 48.0 - 2.25;

// Break n (0, 1, ...) of a recording whose breaks come from seed. The first starts 1 to 2
// seconds in, each next one 4 to 6 seconds after the one before.
DemoBreak demoBreak(std::uint64_t seed, int n);
// Seconds from the click to the crash at that speed.
double demoBreakDelaySeconds(double speedMph);

// The sound itself, a pure function of the frame number: quiet room noise, the breaks of the
// recording (if one runs) and the program's tones. Click and crash start at their loudest
// positive sample, so the first sample over any threshold is the exact onset; the click has
// died away long before a crash could follow.
class DemoSoundSynth {
public:
    static constexpr int kSampleRate = 44100;
    static constexpr int kCrashPeak = 28000;
    static constexpr int kClickPeak = 23000;
    static constexpr int kTonePeak = 12000;
    static constexpr int kNoisePeak = 160;

    struct ToneFrames {
        double frequencyHz = 0;
        double firstFrame = 0; // where the tone starts, between frames
        double frames = 0;
    };

    void setBreaks(std::int64_t recordingStartFrame, std::uint64_t seed);
    void clearBreaks();
    // Interleaved stereo into out (2 * frames words).
    void render(std::int64_t firstFrame, int frames, const std::vector<ToneFrames>& tones,
                std::int16_t* out) const;

private:
    struct Break {
        std::int64_t click;
        std::int64_t crash;
    };

    double breakSound(std::int64_t frame) const;

    std::vector<Break> breaks_; // in frames of the input, in time order
};

// The demo microphone as an input: a thread that renders the sound in step with the capture
// clock, a little behind it as a real sound card is, so a tone published as it starts is heard
// from its first sample. Frame f sounds at start + f / 44,100 s.
class DemoMicrophoneInput final : public MicrophoneInput {
public:
    // Each recording draws its breaks from the next seed given.
    DemoMicrophoneInput(const ToneBus& tones, std::function<std::uint64_t()> nextSeed);
    ~DemoMicrophoneInput() override;

    bool start(Sink sink) override;
    void stop() override;
    std::int64_t frameNow() const override;
    void catchUp() override;
    void recordingStarted(std::int64_t firstFrame) override;
    void recordingStopped() override;

private:
    std::int64_t frameAt(CaptureClock::Clock::time_point t) const;
    // Renders and delivers everything before frame end. Called with mutex_ held.
    void deliverUpTo(std::int64_t end);
    void run(std::stop_token stop);

    const ToneBus& tones_;
    std::function<std::uint64_t()> nextSeed_;
    CaptureClock::Clock::time_point origin_;
    mutable std::mutex mutex_;
    std::condition_variable_any wake_;
    Sink sink_;
    DemoSoundSynth synth_;
    std::int64_t delivered_ = 0;
    std::vector<std::int16_t> buffer_;
    std::jthread thread_;
};

} // namespace ravelcue::media
