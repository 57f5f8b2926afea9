#pragma once

#include "../VideoSource.h"
#include "FfmpegPtr.h"
#include "SystemDeviceCatalog.h"

#include <atomic>
#include <memory>

namespace ravelcue::media::ffmpeg {

// A real camera read through libavdevice and decoded to RGB32 pictures. Frames are stamped with
// the capture clock when they arrive.
class DeviceVideoSource final : public VideoSource {
public:
    ~DeviceVideoSource() override;

    // Opens the device at the size and rate asked for (or what it makes of them). Null, with a
    // reason, when it cannot be opened. May take a moment; does not hang on a silent device.
    static std::unique_ptr<DeviceVideoSource> open(const VideoDeviceEntry& device, QSize size,
                                                   double frameRate, QString& reason);

    QSize size() const override { return size_; }
    double frameRate() const override { return frameRate_; }
    Read read(SourceFrame& frame, std::stop_token stop, QString& reason) override;

private:
    DeviceVideoSource() = default;
    static int interrupted(void* self);

    // Declared before the input so that they outlive it: closing the input may still ask them.
    std::atomic<bool> stopRequested_{false};
    std::atomic<std::int64_t> deadlineMs_{0}; // steady clock ms after which a blocked call gives up
    QString name_;
    InputContextPtr input_;
    CodecContextPtr decoder_;
    PacketPtr packet_;
    FramePtr decoded_;
    SwsPtr converter_;
    int streamIndex_ = -1;
    QSize size_;
    double frameRate_ = 0;
};

} // namespace ravelcue::media::ffmpeg
