#pragma once

#include <optional>
#include <string>

namespace ravelcue::app {

// What the program answers on its command line, before any window and before it looks for a
// running copy of itself.
struct CommandLineAnswer {
    std::string text; // for standard output
    int exitCode = 0;
};

// The answer to "--help" ("-h") or "--version"; nothing when the program should start.
// Every other argument is Qt's own ("-platform offscreen", "-style Fusion") and is left to it.
std::optional<CommandLineAnswer> answerCommandLine(int argc, const char* const* argv);

} // namespace ravelcue::app
