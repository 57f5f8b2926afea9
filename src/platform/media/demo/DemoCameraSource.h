#pragma once

#include "../DeviceControl.h"
#include "../VideoMode.h"
#include "../VideoSource.h"
#include "DemoScene.h"

#include <atomic>
#include <memory>
#include <vector>

namespace ravelcue::media {

// Whether a demo camera is plugged in. Shared by the engine and the sources it opened, so that a
// demo camera can be pulled out while it runs, as a real one can. Thread-safe.
struct DemoCameraPlug {
    std::atomic<bool> present{true};
    // The camera's own settings, kept by it for the run as a real camera keeps them.
    std::atomic<int> brightness{0}; // -100..100, added to every channel
    std::atomic<int> contrast{100}; // percent, around mid grey
};

// The settings a demo camera offers in its source dialog, and setting one (false for an id it
// does not know or a value out of range).
std::vector<DeviceControl> demoCameraControls(const DemoCameraPlug& plug);
bool setDemoCameraControl(DemoCameraPlug& plug, unsigned id, int value);

// Applies brightness and contrast to the rows of an RGB32 picture from fromRow down; the stamp
// band above stays as drawn, so that pictures stay readable by their stamps.
void adjustDemoPicture(QImage& picture, int fromRow, int brightness, int contrast);

// A demo camera: frames at the capture clock's own grid (frame k at k / rate seconds from the
// origin), so that demo cameras of one rate take their pictures at the same instants. The frame
// counter is k. A source held up for a moment delivers the frames it owes, stamped with their
// own instants; one held up for long skips them.
class DemoCameraSource final : public VideoSource {
public:
    DemoCameraSource(int demoNumber, QSize size, double frameRate, const CaptureClock& clock,
                     std::shared_ptr<const DemoCameraPlug> plug);

    QSize size() const override { return scene_.size(); }
    double frameRate() const override { return frameRate_; }
    Read read(SourceFrame& frame, std::stop_token stop, QString& reason) override;

    static constexpr QSize kLargest{1920, 1080};
    // What a demo camera offers in the format dialog: five sizes from 320x240 to 1920x1080, each
    // at 60, 30 and 15 frames a second.
    static std::vector<VideoMode> modes();

private:
    CaptureClock::Clock::time_point timeOf(std::int64_t frame) const;

    DemoScene scene_;
    double frameRate_;
    const CaptureClock& clock_;
    std::shared_ptr<const DemoCameraPlug> plug_;
    std::int64_t next_ = -1;
    int demoNumber_;
};

} // namespace ravelcue::media
