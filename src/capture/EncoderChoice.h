#pragma once

#include <functional>
#include <string>

namespace ravelcue::capture {

inline constexpr const char* kDefaultAviCodecName = "Microsoft Video 1";

// The encoder a capture uses: the name shown in the status bar and the index given to every
// recording camera; uncompressed is the "None" codec of AVI.
struct EncoderChoice {
    std::string name;
    int index = 0;
    bool uncompressed = false;
};

// Picks by name from a list the capture instance offers: the first entry that holds the name,
// compared in any case, or entry 0 when none does. An empty name takes the given default name
// and entry 0. "None" for AVI records uncompressed.
EncoderChoice chooseAviCodec(const std::string& aviCodec, int count,
                             const std::function<std::string(int)>& nameOf);
EncoderChoice chooseWmvProfile(const std::string& wmvProfile, int count,
                               const std::function<std::string(int)>& nameOf);

} // namespace ravelcue::capture
