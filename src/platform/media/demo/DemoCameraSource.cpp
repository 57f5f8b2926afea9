#include "DemoCameraSource.h"

#include <algorithm>
#include <cmath>
#include <condition_variable>
#include <mutex>

namespace ravelcue::media {

DemoCameraSource::DemoCameraSource(int demoNumber, QSize size, double frameRate,
                                   const CaptureClock& clock,
                                   std::shared_ptr<const DemoCameraPlug> plug)
    : scene_(demoNumber, size)
    , frameRate_(frameRate)
    , clock_(clock)
    , plug_(std::move(plug))
    , demoNumber_(demoNumber) {}

CaptureClock::Clock::time_point DemoCameraSource::timeOf(std::int64_t frame) const {
    const auto offset = std::chrono::duration<double>(double(frame) / frameRate_);
    return clock_.origin() + std::chrono::duration_cast<CaptureClock::Clock::duration>(offset);
}

VideoSource::Read DemoCameraSource::read(SourceFrame& frame, std::stop_token stop,
                                         QString& reason) {
    const auto now = CaptureClock::now();
    const double elapsed = std::chrono::duration<double>(now - clock_.origin()).count();
    const auto due = static_cast<std::int64_t>(std::ceil(elapsed * frameRate_));
    // Like a camera's driver, hold half a second: a source kept off the processor for less than
    // that catches up with every frame; one kept off longer skips what it missed.
    const auto backlog = std::max<std::int64_t>(2, std::llround(frameRate_ / 2));
    if (next_ < 0 || next_ < due - backlog) {
        next_ = due;
    }
    std::mutex mutex;
    std::condition_variable_any wake;
    std::unique_lock lock(mutex);
    wake.wait_until(lock, stop, timeOf(next_), [] { return false; });
    if (stop.stop_requested()) {
        return Read::Stopped;
    }
    if (!plug_->present.load()) {
        reason = QStringLiteral("Demo Camera %1 was unplugged").arg(demoNumber_);
        return Read::Lost;
    }
    frame.captured = timeOf(next_);
    frame.image = scene_.render(static_cast<std::uint32_t>(next_), clock_.msAt(frame.captured));
    ++next_;
    return Read::Frame;
}

std::vector<VideoMode> DemoCameraSource::modes() {
    std::vector<VideoMode> all;
    for (const QSize size :
         {QSize(1920, 1080), QSize(1280, 720), QSize(800, 600), QSize(640, 480), QSize(320, 240)}) {
        for (const double rate : {60.0, 30.0, 15.0}) {
            all.push_back({size, rate, QStringLiteral("RGB")});
        }
    }
    return all;
}

} // namespace ravelcue::media
