#pragma once

#include <optional>
#include <string_view>

namespace ravelcue {

struct VideoSizeValue {
    int width = 0;
    int height = 0;
    bool operator==(const VideoSizeValue&) const = default;
};

// Reads a capture size written as "WxH" with any number of digits ("1280x720" is 1280 by 720).
// Anything else, a zero side included, gives nothing.
std::optional<VideoSizeValue> parseVideoSize(std::string_view text);

} // namespace ravelcue
