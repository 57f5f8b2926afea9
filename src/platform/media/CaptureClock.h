#pragma once

#include <chrono>
#include <cstdint>

namespace ravelcue::media {

// The one clock by which every capture of an engine stamps its frames and sounds, so that files
// started together line up. It is the same steady clock the tone bus uses. Immutable, so
// thread-safe.
class CaptureClock {
public:
    using Clock = std::chrono::steady_clock;

    CaptureClock()
        : origin_(Clock::now()) {}

    Clock::time_point origin() const { return origin_; }
    static Clock::time_point now() { return Clock::now(); }
    // Whole milliseconds from the origin to t.
    std::int64_t msAt(Clock::time_point t) const {
        return std::chrono::duration_cast<std::chrono::milliseconds>(t - origin_).count();
    }

private:
    Clock::time_point origin_;
};

} // namespace ravelcue::media
