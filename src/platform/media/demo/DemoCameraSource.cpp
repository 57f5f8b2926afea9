#include "DemoCameraSource.h"

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
    // The first frame, or one long missed: go on from the next instant still to come.
    if (next_ < 0 || next_ < due - 1) {
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

} // namespace ravelcue::media
