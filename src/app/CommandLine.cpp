#include "CommandLine.h"

#include "core/Version.h"

#include <string_view>

namespace ravelcue::app {

namespace {

constexpr std::string_view kUsage = R"(Usage: ravelcue [--help | --version]

Ravelcue is a desktop tool for cue-sport players: it records up to four cameras
together, replays and marks up the videos, measures break speed from the sound of
a shot, and trains the stroke on coloured targets followed in live video.

Everything is chosen in its window; it reads no files or settings from the command
line. Settings are kept in ~/.config/Ravelcue/Ravelcue.conf; recordings, stills,
the break speed log and the last recording in ~/.local/share/Ravelcue.

Options:
  -h, --help       show this text and exit
  --version        show the version and exit

Qt's own options, such as -platform offscreen, are accepted too.

Exit status: 0 when the window is closed, and when another Ravelcue of the same
user is already running (that one is brought to the front); 1 when no display can
be opened.
)";

} // namespace

std::optional<CommandLineAnswer> answerCommandLine(int argc, const char* const* argv) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--help" || argument == "-h") {
            return CommandLineAnswer{std::string(kUsage), 0};
        }
        if (argument == "--version") {
            return CommandLineAnswer{"Ravelcue " + std::string(kVersionText) + "\n", 0};
        }
    }
    return std::nullopt;
}

} // namespace ravelcue::app
