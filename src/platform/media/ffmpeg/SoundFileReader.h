#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace ravelcue::media::ffmpeg {

// The sound of a file, as the break speed analysis reads a recording: 44,100 frames a second,
// 16-bit, stereo, interleaved.
struct SoundReading {
    // The file is already a 16-bit stereo 44,100 Hz PCM WAV: its bytes are the words, read as
    // they stand; `words` is left empty.
    bool plainWav = false;
    std::vector<std::int16_t> words;
    std::string error; // why nothing could be read; empty on success
};

// Decodes the first sound stream of any file FFmpeg reads (WAV of any sample format, m4a, mp3,
// ogg, the sound of a video) and converts it with libswresample, up to `maxSeconds` of it. Plain
// C++; any thread.
SoundReading readSound(const std::string& path, double maxSeconds);

} // namespace ravelcue::media::ffmpeg
