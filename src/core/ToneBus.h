#pragma once

#include <chrono>
#include <mutex>
#include <vector>

namespace ravelcue {

// The tones this program plays, published as they start, so that the demo microphone can hear
// them as a real microphone would. Thread-safe.
class ToneBus {
public:
    using Clock = std::chrono::steady_clock;

    struct Tone {
        double frequencyHz = 0;
        Clock::time_point start;
        std::chrono::milliseconds duration{0};
        Clock::time_point end() const { return start + duration; }
    };

    void publish(const Tone& tone);
    // Tones sounding at any moment of [from, to).
    std::vector<Tone> tonesDuring(Clock::time_point from, Clock::time_point to) const;

private:
    mutable std::mutex mutex_;
    std::vector<Tone> tones_;
};

} // namespace ravelcue
