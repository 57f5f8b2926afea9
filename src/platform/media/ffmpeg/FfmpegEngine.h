#pragma once

#include "../MediaEngine.h"
#include "SystemDeviceCatalog.h"

#include <cstdint>
#include <memory>
#include <vector>

#include <QString>

namespace ravelcue {
class ToneBus;
}

namespace ravelcue::media {

class CaptureClock;

namespace ffmpeg {

struct EngineContext;

struct FfmpegEngineOptions {
    // The demo microphone's k-th recording draws its breaks from demoMicrophoneSeed + k (see
    // demoBreak). Unset, each run draws different ones.
    std::uint64_t demoMicrophoneSeed = 0;
    bool randomDemoSeed = true;
    // Cameras the system does not list, opened through libavdevice as described: a screen
    // ("x11grab", ":0.0"), a network stream. They come after the system's cameras.
    std::vector<VideoDeviceEntry> addedCameras;
    // Where players keep the frame indexes of files they have read, so that a file opened again
    // is exact at once. Empty keeps none.
    QString frameIndexFolder;
};

// The media engine on FFmpeg: the machine's cameras (libavdevice) and microphones (Qt
// Multimedia), the demo devices, recording, and the microphone's WAV files. UI thread only.
// Instances keep what they share with the engine alive, so they may outlive it.
class FfmpegEngine final : public MediaEngine {
public:
    explicit FfmpegEngine(ToneBus& tones, FfmpegEngineOptions options = {});
    ~FfmpegEngine() override;

    DeviceCatalog& devices() override;
    std::unique_ptr<CaptureInstance> createCapture(int index) override;
    std::unique_ptr<PlayerInstance> createPlayer(int index) override;
    std::unique_ptr<RecompressInstance> createRecompress(int index) override;
    std::unique_ptr<AudioInstance> createAudio() override;

    // The clock every capture of this engine stamps its frames by.
    const CaptureClock& captureClock() const;
    // Plugs a demo camera (1..4) in or pulls it out, as one would a USB camera: a running one
    // stops delivering and its recording ends. For trying out and testing failure handling.
    void setDemoCameraPresent(int demoNumber, bool present);

private:
    std::shared_ptr<EngineContext> context_;
};

} // namespace ffmpeg
} // namespace ravelcue::media
