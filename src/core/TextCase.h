#pragma once

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>

namespace ravelcue {

// ASCII case changes for file names, extensions and device names; other bytes stay as they are.
inline std::string asciiLower(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return out;
}

inline std::string asciiUpper(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return out;
}

} // namespace ravelcue
