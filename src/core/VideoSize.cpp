#include "VideoSize.h"

#include <charconv>

namespace ravelcue {

std::optional<VideoSizeValue> parseVideoSize(std::string_view text) {
    const size_t x = text.find_first_of("xX");
    if (x == std::string_view::npos || x == 0 || x + 1 >= text.size()) {
        return std::nullopt;
    }
    auto readSide = [](std::string_view digits) -> std::optional<int> {
        int value = 0;
        const auto* end = digits.data() + digits.size();
        const auto result = std::from_chars(digits.data(), end, value);
        if (result.ec != std::errc() || result.ptr != end || value <= 0) {
            return std::nullopt;
        }
        return value;
    };
    for (char c : text) {
        if (c == '+' || c == '-' || c == ' ') {
            return std::nullopt;
        }
    }
    const std::optional<int> width = readSide(text.substr(0, x));
    const std::optional<int> height = readSide(text.substr(x + 1));
    if (!width || !height) {
        return std::nullopt;
    }
    return VideoSizeValue{*width, *height};
}

} // namespace ravelcue
