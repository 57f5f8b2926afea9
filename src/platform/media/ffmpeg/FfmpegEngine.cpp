#include "FfmpegEngine.h"

#include "../PlayerInstance.h"
#include "../RecompressInstance.h"
#include "../audio/AudioCapture.h"
#include "EngineContext.h"
#include "FfmpegCapture.h"
#include "FfmpegPlayer.h"
#include "FfmpegRecompress.h"

extern "C" {
#include <libavdevice/avdevice.h>
}

#include <random>

namespace ravelcue::media::ffmpeg {

namespace {

std::uint64_t seedFrom(const FfmpegEngineOptions& options) {
    if (!options.randomDemoSeed) {
        return options.demoMicrophoneSeed;
    }
    std::random_device device;
    return (std::uint64_t(device()) << 32) ^ device();
}

} // namespace

FfmpegEngine::FfmpegEngine(ToneBus& tones, FfmpegEngineOptions options) {
    // Registration is idempotent; the library needs it once before devices are listed.
    avdevice_register_all();
    // Encoders and devices talk a lot at their default level; errors are all we report.
    av_log_set_level(AV_LOG_ERROR);
    context_ = std::make_shared<EngineContext>(tones, seedFrom(options));
}

FfmpegEngine::~FfmpegEngine() = default;

DeviceCatalog& FfmpegEngine::devices() {
    return context_->devices;
}

std::unique_ptr<CaptureInstance> FfmpegEngine::createCapture(int) {
    return std::make_unique<FfmpegCapture>(context_);
}

std::unique_ptr<PlayerInstance> FfmpegEngine::createPlayer(int) {
    return std::make_unique<FfmpegPlayer>();
}

std::unique_ptr<RecompressInstance> FfmpegEngine::createRecompress(int index) {
    return std::make_unique<FfmpegRecompress>(index);
}

std::unique_ptr<AudioInstance> FfmpegEngine::createAudio() {
    return std::make_unique<AudioCapture>(context_);
}

const CaptureClock& FfmpegEngine::captureClock() const {
    return context_->clock;
}

void FfmpegEngine::setDemoCameraPresent(int demoNumber, bool present) {
    if (demoNumber >= 1 && demoNumber <= kDemoCameraCount) {
        context_->demoPlugs[size_t(demoNumber - 1)]->present = present;
    }
}

} // namespace ravelcue::media::ffmpeg
