#pragma once

#include "breakspeed/AudioAnalysis.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

namespace ravelcue::breakspeed::test {

// A recording of silence, `words` words long, into which sounds are placed on the left channel.
inline AudioSamples Silence(int words) {
    return AudioSamples(static_cast<size_t>(words), 0);
}

// A short sound on the left channel whose first word above 0 is `word` (even).
inline void Sound(AudioSamples& samples, int word, int level, int frames = 20) {
    for (int f = 0; f < frames; ++f) {
        samples.at(static_cast<size_t>(word + 2 * f)) = static_cast<std::int16_t>(level);
    }
}

inline void WriteWords(const std::filesystem::path& path, const AudioSamples& samples) {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(samples.data()),
              static_cast<std::streamsize>(samples.size() * sizeof(std::int16_t)));
}

// A 44,100 Hz 16-bit stereo WAV as the program records one: its first 22 words give way to the
// 44-byte header, so that the words keep their places in the file.
inline void WriteWav(const std::filesystem::path& path, AudioSamples words) {
    words.resize(std::max<size_t>(words.size(), 22), 0);
    auto put = [&](size_t byte, std::uint32_t value, int bytes) {
        auto* raw = reinterpret_cast<unsigned char*>(words.data());
        for (int b = 0; b < bytes; ++b) {
            raw[byte + static_cast<size_t>(b)] = static_cast<unsigned char>(value >> (8 * b));
        }
    };
    const auto data = static_cast<std::uint32_t>((words.size() - 22) * 2);
    put(0, 0x46464952, 4); // "RIFF"
    put(4, 36 + data, 4);
    put(8, 0x45564157, 4);  // "WAVE"
    put(12, 0x20746d66, 4); // "fmt "
    put(16, 16, 4);
    put(20, 1, 2); // PCM
    put(22, 2, 2);
    put(24, 44100, 4);
    put(28, 44100 * 4, 4);
    put(32, 4, 2);
    put(34, 16, 2);
    put(36, 0x61746164, 4); // "data"
    put(40, data, 4);
    WriteWords(path, words);
}

inline void WriteBytes(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary);
    out << bytes;
}

inline std::string ReadBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A folder of its own for each test, removed with it.
class ScratchFolder {
public:
    ScratchFolder() {
        std::string name = std::filesystem::temp_directory_path() / "ravelcue-breakspeed-XXXXXX";
        path_ = mkdtemp(name.data());
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::filesystem::path file(const std::string& name) const { return path_ / name; }
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

} // namespace ravelcue::breakspeed::test
