#pragma once

#include "breakspeed/AudioAnalysis.h"

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
