#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <unistd.h>

// What the fuzz programs share: a place for inputs that must be files, and a check that stops
// the run with a message when a property of the code under test fails.
namespace ravelcue::fuzz {

inline std::string_view asText(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

// A folder of this process's own under the temporary folder, made on first use.
inline const std::filesystem::path& scratchFolder() {
    static const std::filesystem::path folder = [] {
        std::filesystem::path path =
            std::filesystem::temp_directory_path() / ("ravelcue-fuzz-" + std::to_string(getpid()));
        std::filesystem::create_directories(path);
        return path;
    }();
    return folder;
}

// Writes the input into the scratch folder under this name and returns its path.
inline std::filesystem::path inputFile(std::string_view name, const std::uint8_t* data,
                                       std::size_t size) {
    std::filesystem::path path = scratchFolder() / name;
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    return path;
}

// A failed property is a finding as much as a crash: abort so that libFuzzer keeps the input.
inline void check(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "property failed: %s\n", what);
        std::abort();
    }
}

} // namespace ravelcue::fuzz
