// ravelcue-breakspeed: the break speed analysis of the program on a recording made elsewhere.
// It prints what the pane shows after a measurement, one field a line.

#include "breakspeed/AudioAnalysis.h"
#include "breakspeed/RecordingFile.h"
#include "core/Version.h"

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace {

using namespace ravelcue::breakspeed;

constexpr int kResults = 0;
constexpr int kNoTwoPeaks = 1;
constexpr int kBadInput = 2;

constexpr std::string_view kUsage = R"(Usage: ravelcue-breakspeed FILE [options]

Finds the two sounds of a shot in a recording and prints the time between them,
the speed of the ball over the distance, and its energy, as the Break Speed pane
shows them:

  status: <what the peak detection found>
  delta_time: <seconds>
  speed: <mph, or kph with --metric>
  energy: <joules>

A field the measurement did not reach is printed empty.

FILE may be any sound FFmpeg reads: a WAV of any format, a phone's m4a, an mp3 or
ogg, the sound of a video. It is converted to 44,100 frames a second, 16-bit; a
16-bit stereo WAV of that rate, as the program records, is read as it stands. At
most the first 10 minutes are read.

Options:
  --distance N     distance between the two sounds, above 0, in inches
                   (centimetres with --metric); default 48
  --channel C      left or right: the channel to analyse; default left
  --metric         distance in centimetres and speed in kph; default inches and mph
  --cueball        take the cue ball's diameter (2.25 in, 5.715 cm) off the
                   distance; this is the default, as in the program
  --no-cueball     take the distance as it is
  --threshold N    0 to 4: a peak must be louder than 30%, 40%, 50%, 60% or 70%
                   of the loudest sound; default 2 (50%)
  -h, --help       show this text
  --version        show the version

Exit status: 0 with results; 1 when no two peaks are found (a weak signal, a single
sound); 2 on a bad argument, or a file that is empty or can't be read.
)";

struct Options {
    std::string file;
    std::string distance = "48";
    SpeedSettings settings{0, 1};
    int thresholdIndex = 2;
    bool rightChannel = false;
    bool help = false;
    bool version = false;
};

int badArgument(const std::string& message) {
    std::fprintf(stderr, "ravelcue-breakspeed: %s\nTry 'ravelcue-breakspeed --help'.\n",
                 message.c_str());
    return kBadInput;
}

// Fills options from the arguments; an error message when they are wrong.
std::optional<std::string> parseArguments(int argc, char** argv, Options& options) {
    bool onlyFiles = false;
    for (int i = 1; i < argc; ++i) {
        std::string_view argument = argv[i];
        if (onlyFiles || argument.size() < 2 || argument.front() != '-') {
            if (!options.file.empty()) {
                return "only one recording can be measured at a time";
            }
            options.file = argument;
            continue;
        }
        if (argument == "--") {
            onlyFiles = true;
            continue;
        }
        // --name=value or --name value
        std::string_view name = argument;
        std::optional<std::string_view> value;
        if (const size_t equals = argument.find('='); equals != std::string_view::npos) {
            name = argument.substr(0, equals);
            value = argument.substr(equals + 1);
        }
        auto takeValue = [&]() -> std::optional<std::string_view> {
            if (value) {
                return value;
            }
            if (i + 1 < argc) {
                return std::string_view(argv[++i]);
            }
            return std::nullopt;
        };
        auto noValue = [&] { return !value; };

        if ((name == "-h" || name == "--help") && noValue()) {
            options.help = true;
        } else if (name == "--version" && noValue()) {
            options.version = true;
        } else if (name == "--metric" && noValue()) {
            options.settings.Units = 1;
        } else if (name == "--cueball" && noValue()) {
            options.settings.Cueball = 1;
        } else if (name == "--no-cueball" && noValue()) {
            options.settings.Cueball = 0;
        } else if (name == "--distance") {
            const std::optional<std::string_view> text = takeValue();
            const std::optional<float> distance = text ? FieldNumber(*text) : std::nullopt;
            if (!distance || !(*distance > 0)) {
                return "--distance needs a number above 0";
            }
            options.distance = *text;
        } else if (name == "--channel") {
            const std::optional<std::string_view> text = takeValue();
            if (!text || (*text != "left" && *text != "right")) {
                return "--channel needs left or right";
            }
            options.rightChannel = *text == "right";
        } else if (name == "--threshold") {
            const std::optional<std::string_view> text = takeValue();
            if (!text || text->size() != 1 || (*text)[0] < '0' || (*text)[0] > '4') {
                return "--threshold needs a number from 0 to 4";
            }
            options.thresholdIndex = (*text)[0] - '0';
        } else {
            return "unknown option " + std::string(argument);
        }
    }
    if (!options.help && !options.version && options.file.empty()) {
        return "no recording given";
    }
    return std::nullopt;
}

int unreadable(const std::string& file, const std::string& reason) {
    std::fprintf(stderr, "ravelcue-breakspeed: can't read %s: %s\n", file.c_str(), reason.c_str());
    return kBadInput;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    if (const std::optional<std::string> error = parseArguments(argc, argv, options)) {
        return badArgument(*error);
    }
    if (options.help) {
        std::fwrite(kUsage.data(), 1, kUsage.size(), stdout);
        return kResults;
    }
    if (options.version) {
        std::printf("ravelcue-breakspeed %s\n", ravelcue::kVersionText);
        return kResults;
    }

    std::string reason;
    std::optional<AudioSamples> samples = ReadRecording(options.file, reason);
    if (!samples) {
        return unreadable(options.file, reason);
    }
    if (options.rightChannel) {
        // The analysis reads the words at even places, the left channel's after the header.
        for (std::size_t i = kRecordingHeaderWords; i + 1 < samples->size(); i += 2) {
            std::swap((*samples)[i], (*samples)[i + 1]);
        }
    }
    const PeakDetection detection =
        DetectPeaks(*samples, options.thresholdIndex, options.distance, options.settings);
    const PaneUpdate& update = detection.update;
    auto text = [](const std::optional<std::string>& field) { return field.value_or(""); };
    std::printf("status: %s\n", update.status ? update.status->text.c_str() : "");
    std::printf("delta_time: %s\n", text(update.deltaTime).c_str());
    std::printf("speed: %s\n", text(update.speed).c_str());
    std::printf("energy: %s\n", text(update.energy).c_str());
    return update.speed ? kResults : kNoTwoPeaks;
}
