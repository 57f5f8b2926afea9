#include "MediaInstances.h"

#include "MediaEngine.h"

namespace ravelcue::media {

MediaInstances MediaInstances::create(MediaEngine& engine) {
    MediaInstances instances;
    for (int i = 0; i < 4; ++i) {
        const auto k = static_cast<size_t>(i);
        instances.capture[k] = engine.createCapture(i);
        instances.player[k] = engine.createPlayer(i);
        instances.recompress[k] = engine.createRecompress(i);
    }
    instances.audio = engine.createAudio();
    return instances;
}

} // namespace ravelcue::media
