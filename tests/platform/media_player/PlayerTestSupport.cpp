#include "PlayerTestSupport.h"

#include <chrono>

#include <QTest>

namespace ravelcue::test {

void ManualClock::waitUntil(std::unique_lock<std::mutex>& lock, std::condition_variable& wake,
                            Duration) {
    // The worker looks at the time again after a short real sleep.
    wake.wait_for(lock, std::chrono::milliseconds(1));
}

void ManualClock::advanceMs(double ms) {
    nanoseconds_ += static_cast<long long>(ms * 1'000'000.0);
}

bool showFrame(media::ffmpeg::FfmpegPlayer& player, int frame) {
    player.PlayerSetFrame(frame);
    return player.waitForFrame();
}

bool waitForFrameNumber(media::ffmpeg::FfmpegPlayer& player, int frame) {
    return QTest::qWaitFor([&] { return static_cast<int>(player.PlayerGetFrame()) == frame; },
                           30000);
}

} // namespace ravelcue::test
