#pragma once

#include "core/ToneBus.h"
#include "platform/media/CaptureClock.h"
#include "platform/media/CaptureInstance.h"
#include "platform/media/DeviceCatalog.h"
#include "platform/media/demo/DemoStamp.h"
#include "platform/media/ffmpeg/FfmpegEngine.h"

#include <memory>
#include <vector>

#include <QString>

namespace ravelcue::test {

// An engine with a fixed demo seed, and the tone bus it hears.
struct TestEngine {
    explicit TestEngine(std::uint64_t seed = 1234);
    ToneBus tones;
    std::unique_ptr<media::ffmpeg::FfmpegEngine> engine;

    int demoCameraIndex(int demoNumber);
    int demoMicrophoneIndex();
    std::int64_t clockMsNow() const;
    // A capture instance connected to a demo camera, previewing.
    std::unique_ptr<media::CaptureInstance> demoCamera(int demoNumber, int width = 640,
                                                       int height = 480, double rate = 30);
};

// The stamps of every frame of a recorded file, in file order; empty if it cannot be decoded.
std::vector<media::DemoStamp> stampsOf(const QString& path, QSize size);

} // namespace ravelcue::test
