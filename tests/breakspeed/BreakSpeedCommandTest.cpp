#include "Recordings.h"
#include "core/Version.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <sys/resource.h>
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
        // The right channel is silent.
        {twoSounds, "@ --channel right", 1, Results("Auto Peak Detect - Weak audio signal")},
        {twoSounds, "@ --channel left --no-cueball", 0, Results(found, "0.1000", "27.26", "12.48")},
    };
    for (const Case& c : cases) {
        test::WriteWav(shot, c.words);
        const CommandRun run = RunCommand(c.arguments, shot);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.output;
        EXPECT_EQ(run.output, c.output);
    }
}

TEST(BreakSpeedCommand, BadArgumentsAndUnreadableFiles) {
    test::ScratchFolder folder;
    const auto shot = folder.file("shot.wav");
    test::WriteWav(shot, test::Silence(2000));
    auto quoted = [&](const std::string& name, const std::string& bytes) {
        test::WriteBytes(folder.file(name), bytes);
        return "'" + folder.file(name).string() + "'";
    };
    std::string noise(64 * 1024, '\0');
    for (size_t i = 0; i < noise.size(); ++i) {
        noise[i] = static_cast<char>((i * 7919) ^ (i >> 3));
    }
    const std::string wav = test::ReadBytes(shot);
    const std::string missing = "'" + folder.file("missing.wav").string() + "'";
    for (const std::string& arguments :
         {missing, "'" + folder.path().string() + "'", std::string(),
          std::string("@ --threshold 5"), std::string("@ --threshold"),
          std::string("@ --distance abc"), std::string("@ --distance 0"),
          std::string("@ --distance -48"), std::string("@ --channel middle"),
          std::string("@ --loud"), std::string("@ @"),
          // Files with no sound to read: empty, random bytes, a header cut short.
          quoted("empty.wav", ""), quoted("noise.wav", noise), quoted("cut.wav", wav.substr(0, 30)),
          quoted("header-only.wav", wav.substr(0, 44))}) {
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

// Recordings made elsewhere: other rates, channels, sample formats and containers, made from one
// shot by the ffmpeg command line. Each reads the shot's speed.
TEST(BreakSpeedCommand, ReadsAnySoundFfmpegReads) {
    test::ScratchFolder folder;
    // Two bursts of a 1 kHz tone 0.1 s apart, loud enough to survive any encoder.
    AudioSamples shot = test::Silence(2 * 44100 + 22);
    for (const int start : {22 + 2 * 20000, 22 + 2 * 24410}) {
        for (int f = 0; f < 441; ++f) {
            const auto level =
                static_cast<std::int16_t>(20000 * std::sin(2 * 3.14159265358979 * f / 44.1));
            shot.at(static_cast<size_t>(start + 2 * f)) = level;
        }
    }
    const auto source = folder.file("shot.wav");
    test::WriteWav(source, shot);
    struct Case {
        const char* name;
        const char* encoding;
    };
    const Case cases[] = {
        {"mono48k.wav", "-ar 48000 -ac 1 -c:a pcm_s16le"},
        {"float.wav", "-c:a pcm_f32le"},
        {"eight-bit.wav", "-c:a pcm_u8"},
        {"deep.wav", "-ar 96000 -c:a pcm_s24le"},
        {"phone.m4a", "-c:a aac -b:a 128k"},
    };
    for (const Case& c : cases) {
        const auto converted = folder.file(c.name);
        const std::string command = "ffmpeg -v error -y -i '" + source.string() + "' " +
                                    c.encoding + " '" + converted.string() + "'";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
        const CommandRun run = RunCommand("@ --no-cueball", converted);
        EXPECT_EQ(run.exitCode, 0) << c.name << "\n" << run.output;
        const size_t at = run.output.find("speed: ");
        ASSERT_NE(at, std::string::npos) << c.name;
        // 48 inches in 0.1 s; a sample either way at 44.1 kHz is 0.006 mph.
        EXPECT_NEAR(std::stod(run.output.substr(at + 7)), 27.26, 0.02) << c.name;
    }
}

// Rates a damaged header may claim. One frame a second is stretched 44,100 times on its way to
// the analysis: 4 KiB of it, one packet, would be 720 MB, but the companion never holds more than
// the ten minutes it reads (105 MB). A gigahertz is refused before the resampler builds filters
// of gigabytes for it.
TEST(BreakSpeedCommand, RatesOfAFewHertzOrOfGigahertzTakeNoGigabytes) {
    struct Case {
        std::uint32_t rate;
        int exitCode;
    };
    for (const Case c : {Case{1, 0}, Case{1'140'858'688, 2}}) {
        SCOPED_TRACE(c.rate);
        test::ScratchFolder folder;
        std::string sound(8192, '\x80');
        for (size_t i = 0; i < sound.size(); i += 7) {
            sound[i] = '\xF0';
        }
        auto little = [](std::uint32_t value, int bytes) {
            std::string text;
            for (int i = 0; i < bytes; ++i) {
                text += static_cast<char>((value >> (8 * i)) & 0xFF);
            }
            return text;
        };
        // RIFF WAVE, PCM, one channel of 8 bits.
        const std::string header =
            "RIFF" + little(36 + static_cast<std::uint32_t>(sound.size()), 4) + "WAVEfmt " +
            little(16, 4) + little(1, 2) + little(1, 2) + little(c.rate, 4) + little(c.rate, 4) +
            little(1, 2) + little(8, 2) + "data" +
            little(static_cast<std::uint32_t>(sound.size()), 4);
        const auto file = folder.file("rate.wav");
        test::WriteBytes(file, header + sound);

        const CommandRun run = RunCommand("@", file);
        EXPECT_EQ(run.exitCode, c.exitCode) << run.output;
        rusage children{};
        ASSERT_EQ(getrusage(RUSAGE_CHILDREN, &children), 0);
        EXPECT_LT(children.ru_maxrss, 400 * 1024) << "kilobytes at the most";
    }
}

} // namespace
} // namespace ravelcue::breakspeed
