#pragma once

#include "MediaEngine.h"

namespace ravelcue::media {

// An engine whose instances connect to nothing: no device, no file. Used where a window needs
// instances but no media at all.
class DetachedEngine : public MediaEngine {
public:
    DetachedEngine();
    ~DetachedEngine() override;

    DeviceCatalog& devices() override;
    std::unique_ptr<CaptureInstance> createCapture(int index) override;
    std::unique_ptr<PlayerInstance> createPlayer(int index) override;
    std::unique_ptr<RecompressInstance> createRecompress(int index) override;
    std::unique_ptr<AudioInstance> createAudio() override;

private:
    std::unique_ptr<DeviceCatalog> devices_;
};

} // namespace ravelcue::media
