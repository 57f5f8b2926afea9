#include "Recordings.h"
#include "core/Version.h"

#include <cstdio>
#include <sys/wait.h>

#include <gtest/gtest.h>

namespace ravelcue::breakspeed {
namespace {

struct CommandRun {
    int exitCode = -1;
    std::string output; // standard output only
};

// Runs the companion with these arguments; "@" stands for the (quoted) recording.
CommandRun RunCommand(std::string arguments, const std::filesystem::path& recording = {}) {
    for (size_t at = 0; (at = arguments.find('@', at)) != std::string::npos;) {
        arguments.replace(at, 1, "'" + recording.string() + "'");
    }
    CommandRun run;
    FILE* pipe =
        popen(("'" RAVELCUE_BREAKSPEED_COMMAND "' " + arguments + " 2>/dev/null").c_str(), "r");
    char buffer[512];
    for (size_t got = 0;
         pipe != nullptr && (got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) {
        run.output.append(buffer, got);
    }
    const int status = pipe != nullptr ? pclose(pipe) : -1;
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

std::string Results(const std::string& status, const std::string& deltaTime = "",
                    const std::string& speed = "", const std::string& energy = "") {
    return "status: " + status + "\ndelta_time: " + deltaTime + "\nspeed: " + speed +
           "\nenergy: " + energy + "\n";
}

TEST(BreakSpeedCommand, PrintsWhatThePaneShows) {
    test::ScratchFolder folder;
    const auto shot = folder.file("shot.wav");
    const AudioSamples silence = test::Silence(60000);
    AudioSamples oneSound = silence;
    test::Sound(oneSound, 20000, 10000);
    AudioSamples twoSounds = oneSound;
    test::Sound(twoSounds, 28820, 10000);
    const std::string found = "Auto Peak Detect - 2 peaks found";
    struct Case {
        AudioSamples words;
        std::string arguments;
        int exitCode;
        std::string output;
    };
    const Case cases[] = {
        {twoSounds, "@ --no-cueball", 0, Results(found, "0.1000", "27.26", "12.48")},
        // The defaults are the program's: 48 inches, the cue ball taken off, 50%.
        {twoSounds, "@", 0, Results(found, "0.1000", "25.99", "11.33")},
        {twoSounds, "--metric --distance=100 --no-cueball --threshold 4 @", 0,
         Results(found, "0.1000", "36.00", "21.75")},
        {oneSound, "@", 1, Results("Auto Peak Detect - 1st peak found")},
        {silence, "@", 1, Results("Auto Peak Detect - Weak audio signal")},
        {{}, "@", 1, Results("No recording to analyse")},
    };
    for (const Case& c : cases) {
        test::WriteWords(shot, c.words);
        const CommandRun run = RunCommand(c.arguments, shot);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.output;
        EXPECT_EQ(run.output, c.output);
    }
}

TEST(BreakSpeedCommand, BadArgumentsAndUnreadableFiles) {
    test::ScratchFolder folder;
    const auto shot = folder.file("shot.wav");
    test::WriteWords(shot, test::Silence(2000));
    const std::string missing = "'" + folder.file("missing.wav").string() + "'";
    for (const std::string& arguments :
         {missing, "'" + folder.path().string() + "'", std::string(),
          std::string("@ --threshold 5"), std::string("@ --threshold"),
          std::string("@ --distance abc"), std::string("@ --loud"), std::string("@ @")}) {
        const CommandRun run = RunCommand(arguments, shot);
        EXPECT_EQ(run.exitCode, 2) << arguments;
        EXPECT_EQ(run.output, "") << arguments;
    }
    const CommandRun help = RunCommand("--help");
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.output.find("--no-cueball"), std::string::npos);
    const CommandRun version = RunCommand("--version");
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.output, std::string("ravelcue-breakspeed ") + kVersionText + "\n");
}

} // namespace
} // namespace ravelcue::breakspeed
