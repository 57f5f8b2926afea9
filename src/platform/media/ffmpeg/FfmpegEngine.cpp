#include "FfmpegEngine.h"

#include "../PlayerInstance.h"
#include "../RecompressInstance.h"
#include "../audio/AudioCapture.h"
#include "../audio/QtMicrophoneInput.h"
#include "../demo/DemoMicrophone.h"
#include "EngineContext.h"
#include "FfmpegCapture.h"
#include "FfmpegPlayer.h"
#include "FfmpegRecompress.h"

extern "C" {
#include <libavdevice/avdevice.h>
}

#include <algorithm>
#include <random>

#include <QMediaDevices>

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
    context_ =
        std::make_shared<EngineContext>(tones, seedFrom(options), std::move(options.addedCameras));
    if (!options.frameIndexFolder.isEmpty()) {
        context_->frameIndexes = std::make_shared<const FrameIndexCache>(options.frameIndexFolder);
    }
}

FfmpegEngine::~FfmpegEngine() = default;

DeviceCatalog& FfmpegEngine::devices() {
    return context_->devices;
}

std::unique_ptr<CaptureInstance> FfmpegEngine::createCapture(int) {
    return std::make_unique<FfmpegCapture>(context_);
}

std::unique_ptr<PlayerInstance> FfmpegEngine::createPlayer(int) {
    return std::make_unique<FfmpegPlayer>(std::make_shared<SteadyPlaybackClock>(), nullptr,
                                          context_->frameIndexes);
}

std::unique_ptr<RecompressInstance> FfmpegEngine::createRecompress(int index) {
    return std::make_unique<FfmpegRecompress>(index);
}

std::unique_ptr<AudioInstance> FfmpegEngine::createAudio() {
    // The engine knows what each index of its list is: a sound card through Qt, or the demo
    // microphone, whose k-th recording of this engine plays the breaks of seed + k.
    return std::make_unique<AudioCapture>(
        [context = context_](int index) -> std::unique_ptr<MicrophoneInput> {
            const AudioDeviceEntry* device = context->devices.audioDevice(index);
            if (device == nullptr) {
                return nullptr;
            }
            if (device->demo) {
                return std::make_unique<DemoMicrophoneInput>(context->tones, [context] {
                    return context->demoMicrophoneSeed + context->demoRecordings++;
                });
            }
            const auto inputs = QMediaDevices::audioInputs();
            const auto found =
                std::find_if(inputs.begin(), inputs.end(),
                             [&](const QAudioDevice& d) { return d.id() == device->qtDeviceId; });
            return found != inputs.end() ? std::make_unique<QtMicrophoneInput>(*found) : nullptr;
        });
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
