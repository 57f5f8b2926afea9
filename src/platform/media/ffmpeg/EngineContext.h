#pragma once

#include "../CaptureClock.h"
#include "../demo/DemoCameraSource.h"
#include "FrameIndexCache.h"
#include "SystemDeviceCatalog.h"
#include "core/ToneBus.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace ravelcue::media::ffmpeg {

// What the instances of one engine share. Instances keep it alive, so an instance may outlive
// its engine. The clock and the plugs are thread-safe; the catalog is UI thread only.
struct EngineContext {
    EngineContext(ToneBus& toneBus, std::uint64_t seed, std::vector<VideoDeviceEntry> addedCameras)
        : devices(std::move(addedCameras))
        , tones(toneBus)
        , demoMicrophoneSeed(seed) {
        for (auto& plug : demoPlugs) {
            plug = std::make_shared<DemoCameraPlug>();
        }
    }

    CaptureClock clock;
    SystemDeviceCatalog devices;
    std::array<std::shared_ptr<DemoCameraPlug>, kDemoCameraCount> demoPlugs;
    ToneBus& tones;
    std::uint64_t demoMicrophoneSeed;
    // Shared by every player; null when no folder was given.
    std::shared_ptr<const FrameIndexCache> frameIndexes;
    // Recordings made by demo microphones so far: the k-th draws its breaks from seed + k.
    std::atomic<std::uint64_t> demoRecordings{0};
};

} // namespace ravelcue::media::ffmpeg
