#pragma once

#include "AudioAnalysis.h"

#include <optional>
#include <string>

// A recording made elsewhere, read for the command-line companion as the pane holds its own.
namespace ravelcue::breakspeed {

// Longer recordings are read this far: a shot is seconds long, and a file of hours would only
// fill the memory.
inline constexpr double kLongestRecordingSeconds = 600;
// The header of the pane's own recordings, which the analysis counts in.
inline constexpr int kRecordingHeaderWords = 22;

// The words of the file from its first byte when it is a 16-bit stereo 44,100 Hz WAV, or its
// sound converted to that behind room for a header, so that word numbers mean the same in both.
// Nothing, with the reason, when the file can't be read or holds no sound.
std::optional<AudioSamples> ReadRecording(const std::string& file, std::string& reason);

} // namespace ravelcue::breakspeed
