#pragma once

#include "platform/media/ffmpeg/FfmpegPlayer.h"
#include "platform/media/ffmpeg/PlaybackClock.h"

#include <atomic>
#include <memory>

namespace ravelcue::test {

// A playback clock that only moves when the test moves it.
class ManualClock final : public media::ffmpeg::PlaybackClock {
public:
    Duration now() const override { return Duration(nanoseconds_.load()); }
    void waitUntil(std::unique_lock<std::mutex>& lock, std::condition_variable& wake,
                   Duration) override;
    void advanceMs(double ms);

private:
    std::atomic<long long> nanoseconds_{1'000'000'000};
};

// Seeks to the frame and waits until it is on show.
bool showFrame(media::ffmpeg::FfmpegPlayer& player, int frame);
// Spins the event loop until the player shows that frame; false when it never does.
bool waitForFrameNumber(media::ffmpeg::FfmpegPlayer& player, int frame);

} // namespace ravelcue::test
