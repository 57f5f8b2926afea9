#pragma once

#include <cstdint>

namespace ravelcue::media {

// What a recording has done so far. These are the third, fourth and fifth of the six results the
// capture statistics have always been read as.
struct CaptureStats {
    std::int32_t framesWritten = 0;
    std::int32_t framesDropped = 0;
    std::int32_t elapsedMs = 0;
};

} // namespace ravelcue::media
