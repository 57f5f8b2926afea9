#include "DemoCameraSource.h"

#include "DemoStamp.h"

#include <algorithm>
#include <array>
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
    adjustDemoPicture(frame.image, demoStampBandHeight(frame.image.size()),
                      plug_->brightness.load(), plug_->contrast.load());
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

namespace {
constexpr unsigned kBrightnessId = 1;
constexpr unsigned kContrastId = 2;
} // namespace

std::vector<DeviceControl> demoCameraControls(const DemoCameraPlug& plug) {
    DeviceControl brightness;
    brightness.id = kBrightnessId;
    brightness.name = QStringLiteral("Brightness");
    brightness.minimum = -100;
    brightness.maximum = 100;
    brightness.value = plug.brightness.load();
    DeviceControl contrast;
    contrast.id = kContrastId;
    contrast.name = QStringLiteral("Contrast");
    contrast.minimum = 0;
    contrast.maximum = 200;
    contrast.defaultValue = 100;
    contrast.value = plug.contrast.load();
    return {brightness, contrast};
}

bool setDemoCameraControl(DemoCameraPlug& plug, unsigned id, int value) {
    for (const DeviceControl& control : demoCameraControls(plug)) {
        if (control.id == id && value >= control.minimum && value <= control.maximum) {
            (id == kBrightnessId ? plug.brightness : plug.contrast) = value;
            return true;
        }
    }
    return false;
}

void adjustDemoPicture(QImage& picture, int fromRow, int brightness, int contrast) {
    if ((brightness == 0 && contrast == 100) || picture.format() != QImage::Format_RGB32) {
        return;
    }
    std::array<std::uint8_t, 256> table{};
    for (int v = 0; v < 256; ++v) {
        table[size_t(v)] =
            std::uint8_t(std::clamp((v - 128) * contrast / 100 + 128 + brightness, 0, 255));
    }
    for (int y = std::max(fromRow, 0); y < picture.height(); ++y) {
        auto* pixel = reinterpret_cast<std::uint32_t*>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            const std::uint32_t p = pixel[x];
            pixel[x] = 0xFF000000U | (std::uint32_t(table[(p >> 16) & 0xFF]) << 16) |
                       (std::uint32_t(table[(p >> 8) & 0xFF]) << 8) | table[p & 0xFF];
        }
    }
}

} // namespace ravelcue::media
