#pragma once

#include <memory>

class QObject;

namespace ravelcue::media {

class AudioInstance;
class CaptureInstance;
class DeviceCatalog;
class PlayerInstance;
class RecompressInstance;

// Makes the instances the window needs. The window owns what it is given.
class MediaEngine {
public:
    virtual ~MediaEngine() = default;

    virtual DeviceCatalog& devices() = 0;
    virtual std::unique_ptr<CaptureInstance> createCapture(int index) = 0;
    virtual std::unique_ptr<PlayerInstance> createPlayer(int index) = 0;
    virtual std::unique_ptr<RecompressInstance> createRecompress(int index) = 0;
    virtual std::unique_ptr<AudioInstance> createAudio() = 0;
};

} // namespace ravelcue::media
