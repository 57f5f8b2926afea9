#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace ravelcue::media::ffmpeg {

// The time that paces playback. The player's worker asks it for the time and sleeps through it,
// so that tests can run playback on a clock they move by hand. Thread-safe.
class PlaybackClock {
public:
    using Duration = std::chrono::nanoseconds;

    virtual ~PlaybackClock() = default;
    virtual Duration now() const = 0;
    // Sleeps until the deadline or until the condition variable is notified.
    virtual void waitUntil(std::unique_lock<std::mutex>& lock, std::condition_variable& wake,
                           Duration deadline) = 0;
};

// Wall-clock time from the steady clock.
class SteadyPlaybackClock final : public PlaybackClock {
public:
    Duration now() const override { return std::chrono::steady_clock::now().time_since_epoch(); }
    void waitUntil(std::unique_lock<std::mutex>& lock, std::condition_variable& wake,
                   Duration deadline) override {
        wake.wait_until(
            lock, std::chrono::steady_clock::time_point(
                      std::chrono::duration_cast<std::chrono::steady_clock::duration>(deadline)));
    }
};

} // namespace ravelcue::media::ffmpeg
