#include "Recordings.h"

#include <cstdio>
#include <sys/wait.h>

#include <gtest/gtest.h>

namespace ravelcue::breakspeed {
namespace {

struct CommandRun {
    int exitCode = -1;
    std::string output; // standard output only
};

CommandRun RunCommand(const std::string& arguments) {
    const std::string command =
        std::string("'") + RAVELCUE_BREAKSPEED_COMMAND + "' " + arguments + " 2>/dev/null";
    CommandRun run;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return run;
    }
    char buffer[512];
    size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) {
        run.output.append(buffer, got);
    }
    const int status = pclose(pipe);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

std::string Quoted(const std::filesystem::path& path) {
    return "'" + path.string() + "'";
}

std::string Results(const std::string& status, const std::string& deltaTime,
                    const std::string& speed, const std::string& energy) {
    return "status: " + status + "\ndelta_time: " + deltaTime + "\nspeed: " + speed +
           "\nenergy: " + energy + "\n";
}

TEST(BreakSpeedCommand, PrintsWhatThePaneShows) {
    test::ScratchFolder folder;
    const auto shot = folder.file("shot.wav");
    AudioSamples samples = test::Silence(60000);
    test::Sound(samples, 20000, 10000);
    test::Sound(samples, 28820, 10000);
    test::WriteWords(shot, samples);

    const std::string found = "Auto Peak Detect - 2 peaks found";
    CommandRun run = RunCommand(Quoted(shot) + " --no-cueball");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output, Results(found, "0.1000", "27.26", "12.48"));

    // The defaults are the program's: 48 inches, the cue ball taken off, 50%.
    EXPECT_EQ(RunCommand(Quoted(shot)).output, Results(found, "0.1000", "25.99", "11.33"));
    EXPECT_EQ(
        RunCommand("--metric --distance=100 --no-cueball --threshold 4 " + Quoted(shot)).output,
        Results(found, "0.1000", "36.00", "21.75"));

    // One sound only: the first peak and nothing else.
    AudioSamples single = test::Silence(60000);
    test::Sound(single, 20000, 10000);
    test::WriteWords(shot, single);
    run = RunCommand(Quoted(shot));
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, Results("Auto Peak Detect - 1st peak found", "", "", ""));

    test::WriteWords(shot, test::Silence(60000));
    run = RunCommand(Quoted(shot));
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, Results("Auto Peak Detect - Weak audio signal", "", "", ""));

    test::WriteBytes(shot, "");
    run = RunCommand(Quoted(shot));
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, Results("No recording to analyse", "", "", ""));
}

TEST(BreakSpeedCommand, BadArgumentsAndUnreadableFiles) {
    test::ScratchFolder folder;
    const auto shot = folder.file("shot.wav");
    test::WriteWords(shot, test::Silence(2000));
    for (const std::string& arguments : {
             Quoted(folder.file("missing.wav")),
             Quoted(folder.path()),
             std::string(),
             Quoted(shot) + " --threshold 5",
             Quoted(shot) + " --threshold",
             Quoted(shot) + " --distance abc",
             Quoted(shot) + " --loud",
             Quoted(shot) + " " + Quoted(shot),
         }) {
        const CommandRun run = RunCommand(arguments);
        EXPECT_EQ(run.exitCode, 2) << arguments;
        EXPECT_EQ(run.output, "") << arguments;
    }
    const CommandRun help = RunCommand("--help");
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.output.find("--no-cueball"), std::string::npos);
}

TEST(BreakSpeedCommand, MeasuresARecordingMadeByAnotherProgram) {
    // Two bursts of a 2 kHz tone 0.1 s apart, as ffmpeg writes them: a real WAV header, both
    // channels. Both bursts start in the same phase, so their first loud words lie 0.1 s apart.
    test::ScratchFolder folder;
    const auto shot = folder.file("two-clicks.wav");
    const std::string make =
        "ffmpeg -nostdin -v error -y -f lavfi -i "
        "\"aevalsrc='0.6*sin(2*PI*2000*t)*(between(t,0.5,0.52)+between(t,0.6,0.62))'"
        ":s=44100:c=stereo:d=1.5\" -c:a pcm_s16le " +
        Quoted(shot);
    if (std::system(make.c_str()) != 0) {
        GTEST_SKIP() << "ffmpeg could not make the recording";
    }
    const CommandRun run = RunCommand(Quoted(shot) + " --no-cueball");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output, Results("Auto Peak Detect - 2 peaks found", "0.1000", "27.26", "12.48"));
}

} // namespace
} // namespace ravelcue::breakspeed
