#pragma once

#include <cstdint>
#include <filesystem>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The arithmetic of a break speed: the recording read as words, the two peaks in it, and from the
// time between them and a typed distance the speed and the energy. Plain values in, plain values
// out; the pane writes what comes back into its controls.
namespace ravelcue::breakspeed {

// The whole of breakspeed.wav as signed 16-bit words, header included: word 0 of a pair is the
// left channel. Index i is a word, not a frame: one second is 88200 words.
using AudioSamples = std::vector<std::int16_t>;

inline constexpr int kFramesPerSecond = 44100;
// Detection never looks below this word: it clears the header and the first moments.
inline constexpr int kFirstWordScanned = 1000;
// A loudest sample under this is too weak to measure.
inline constexpr int kWeakestPeak = 2000;
// After the first peak nothing can count as the second for this many words (about 57.8 ms).
inline constexpr int kDeadTimeWords = 5100;
// The stretch shown in Picture2 reaches this far beyond each peak (about 56.7 ms).
inline constexpr int kSelectionMarginWords = 5000;

// Colours as 0x00BBGGRR.
inline constexpr std::uint32_t kRed = 255;
inline constexpr std::uint32_t kDarkGreen = 32768;
inline constexpr std::uint32_t kBlack = 0;
inline constexpr std::uint32_t kFirstPeakGreen = 65280;
inline constexpr std::uint32_t kSecondPeakMagenta = 16711935;

// The two settings the speed depends on: Units 0 inches and mph, 1 centimetres and kph; Cueball 1
// takes the ball's diameter off the distance.
struct SpeedSettings {
    int Units = 0;
    int Cueball = 1;
};

struct Status {
    std::string text;
    std::uint32_t colour = kRed;
    bool operator==(const Status&) const = default;
};

// Whether a step read txtDistance, and if so whether it held a number. A text that is not one
// turns the field red and computes nothing from it.
enum class DistanceCheck { NotRead, Number, NotANumber };

// What one step writes into the pane. A field left empty keeps what the pane shows.
struct PaneUpdate {
    std::optional<Status> status;         // lblBreakStatus
    std::optional<std::string> deltaTime; // txtDeltaTime
    std::optional<std::string> speed;     // txtSpeed
    std::optional<std::string> energy;    // txtEnergy
    DistanceCheck distance = DistanceCheck::NotRead;
};

enum class LoadResult { Loaded, Missing, Empty, Unreadable };

struct LoadedAudio {
    LoadResult result = LoadResult::Missing;
    AudioSamples samples; // empty unless Loaded
};

// Reads the file whole, from byte 0, as little-endian words; an odd byte count rounds the word
// count to even, the missing byte reading as 0. A file with no whole word is Empty.
// At most `maxBytes` of the file are read.
LoadedAudio LoadAudioFile(const std::filesystem::path& path,
                          std::uintmax_t maxBytes = std::numeric_limits<std::uintmax_t>::max());

// [start, end] as word indices, the stretch shown in Picture2 (AudioSelStart, AudioSelEnd).
struct WordRange {
    int start = 0;
    int end = 0;
    bool operator==(const WordRange&) const = default;
};

struct PeakDetection {
    PaneUpdate update;
    int peak = 0;      // loudest left-channel sample from word 1000 on, 0 when none is above 0
    int threshold = 0; // a peak must be strictly louder than this
    std::optional<int> firstPeak;       // i1: a green line in Picture1
    std::optional<int> secondPeak;      // i2: a magenta line in Picture1
    std::optional<WordRange> selection; // set: Picture2 shows this stretch anew
    float deltaTime = 0;                // seconds; not above 0 without a second peak
};

// Finds the first and second peak of the left channel and, with the distance, the results.
// thresholdIndex is the ListIndex of cboThreshold: 0..4 give 30% to 70% of the loudest sample
// (an index outside the list counts as its nearest end).
PeakDetection DetectPeaks(std::span<const std::int16_t> samples, int thresholdIndex,
                          std::string_view distanceText, const SpeedSettings& settings);

// Seconds between two word indices of one channel, as a 32-bit float.
float DeltaTime(int fromWord, int toWord);

// Speed from distance (inches or centimetres) and seconds, in mph or kph. With a delta time not
// above 0, or Units other than 0 and 1, speed is left as it was.
void CalcSpeed(float distance, float deltaTime, float& speed, const SpeedSettings& settings);

// Kinetic energy in joules of the 0.168 kg ball at the speed shown; the speed is taken as mph
// whatever Units say.
double Energy(float speed);

// The number in a distance or delta time field, or nothing when the text is not one.
std::optional<float> FieldNumber(std::string_view text);

// txtDistance_Change: the speed again from the two fields, written with three decimals. A
// delta time that is not a number gives "0.000"; a distance that is not one computes nothing.
PaneUpdate SpeedForDistanceChange(std::string_view distanceText, std::string_view deltaTimeText,
                                  const SpeedSettings& settings);

// The release of a drag across Picture2: MarkStart and MarkEnd in words give the delta time and
// the speed. Nothing is written unless the delta time is above 0; the energy is never touched.
PaneUpdate MeasureMarks(int markStart, int markEnd, std::string_view distanceText,
                        const SpeedSettings& settings);

} // namespace ravelcue::breakspeed
