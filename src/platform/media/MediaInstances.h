#pragma once

#include "AudioInstance.h"
#include "CaptureInstance.h"
#include "PlayerInstance.h"
#include "RecompressInstance.h"

#include <array>
#include <memory>

namespace ravelcue::media {

class MediaEngine;

// The main window's instances: one capture, player and re-encoder per camera position, and the
// microphone. UI thread only.
struct MediaInstances {
    std::array<std::unique_ptr<CaptureInstance>, 4> capture;
    std::array<std::unique_ptr<PlayerInstance>, 4> player;
    std::array<std::unique_ptr<RecompressInstance>, 4> recompress;
    std::unique_ptr<AudioInstance> audio;

    static MediaInstances create(MediaEngine& engine);

    CaptureInstance& cam(int i) const { return *capture.at(static_cast<size_t>(i)); }
    PlayerInstance& play(int i) const { return *player.at(static_cast<size_t>(i)); }
};

} // namespace ravelcue::media
