#include "AudioAnalysis.h"

#include "core/NumberFormat.h"
#include "core/Rounding.h"
#include "core/TextNumbers.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <system_error>

namespace ravelcue::breakspeed {

namespace {

// What txtSpeed shows while the distance is not a number, so that no speed of an older distance
// stands beside it.
constexpr const char* kNoSpeed = "0.000";

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

// The first even index i >= from with samples[i] > threshold, stopping at ub - 1 as every scan of
// the recording does; nothing when there is none.
std::optional<int> firstAbove(std::span<const std::int16_t> samples, std::size_t from,
                              int threshold) {
    const std::size_t stop = samples.size() < 2 ? 0 : samples.size() - 1; // i <= ub - 1
    for (std::size_t i = from; i < stop; i += 2) {
        if (samples[i] > threshold) {
            return static_cast<int>(i);
        }
    }
    return std::nullopt;
}

int loudestFrom(std::span<const std::int16_t> samples, std::size_t from) {
    int peak = 0;
    const std::size_t stop = samples.size() < 2 ? 0 : samples.size() - 1;
    for (std::size_t i = from; i < stop; i += 2) {
        peak = std::max(peak, static_cast<int>(samples[i]));
    }
    return peak;
}

} // namespace

LoadedAudio LoadAudioFile(const std::filesystem::path& path, std::uintmax_t maxBytes) {
    LoadedAudio loaded;
    std::error_code error;
    if (!std::filesystem::exists(path, error)) {
        loaded.result = LoadResult::Missing;
        return loaded;
    }
    const std::uintmax_t fileBytes = std::filesystem::file_size(path, error);
    if (error) {
        loaded.result = LoadResult::Unreadable;
        return loaded;
    }
    const std::uintmax_t bytes = std::min(fileBytes, maxBytes);
    // bytes / 2 rounded, a tie to even: 2k+1 bytes make k words when k is even, k+1 when odd.
    std::uintmax_t words = bytes / 2;
    if (bytes % 2 == 1 && words % 2 == 1) {
        ++words;
    }
    if (words == 0) {
        loaded.result = LoadResult::Empty;
        return loaded;
    }
    // Word indices are 32-bit throughout, as they were in the recordings this reads.
    if (words > static_cast<std::uintmax_t>(std::numeric_limits<int>::max())) {
        loaded.result = LoadResult::Unreadable;
        return loaded;
    }
    const FilePtr file(std::fopen(path.string().c_str(), "rb"));
    if (!file) {
        loaded.result = LoadResult::Unreadable;
        return loaded;
    }
    loaded.samples.assign(static_cast<std::size_t>(words), 0);
    const std::size_t wanted = static_cast<std::size_t>(std::min(bytes, words * 2));
    if (std::fread(loaded.samples.data(), 1, wanted, file.get()) != wanted) {
        loaded.samples.clear();
        loaded.result = LoadResult::Unreadable;
        return loaded;
    }
    if constexpr (std::endian::native == std::endian::big) {
        for (std::int16_t& word : loaded.samples) {
            const auto u = static_cast<std::uint16_t>(word);
            word = static_cast<std::int16_t>(static_cast<std::uint16_t>((u << 8) | (u >> 8)));
        }
    }
    loaded.result = LoadResult::Loaded;
    return loaded;
}

float DeltaTime(int fromWord, int toWord) {
    // Words to frames by the division by 2, in this order, so results match to the last digit.
    return static_cast<float>((1.0 / 44100.0) * static_cast<double>(toWord - fromWord) / 2.0);
}

void CalcSpeed(float distance, float deltaTime, float& speed, const SpeedSettings& settings) {
    if (!(deltaTime > 0)) {
        return;
    }
    if (settings.Cueball == 1) {
        const double diameter = settings.Units == 1 ? 5.715 : 2.25;
        distance = static_cast<float>(static_cast<double>(distance) - diameter);
    }
    double toSpeedUnit = 0;
    if (settings.Units == 0) {
        toSpeedUnit = 0.0568; // inches a second to mph
    } else if (settings.Units == 1) {
        toSpeedUnit = 0.036; // centimetres a second to kph
    } else {
        return;
    }
    speed = static_cast<float>(static_cast<double>(distance) / static_cast<double>(deltaTime) *
                               toSpeedUnit);
}

double Energy(float speed) {
    const double metresPerSecond = static_cast<double>(speed) * 0.447;
    return metresPerSecond * metresPerSecond * 0.168 / 2.0;
}

std::optional<float> FieldNumber(std::string_view text) {
    const std::optional<double> number = parseNumber(text);
    if (!number || !std::isfinite(*number) ||
        std::fabs(*number) > static_cast<double>(std::numeric_limits<float>::max())) {
        return std::nullopt;
    }
    return static_cast<float>(*number);
}

PeakDetection DetectPeaks(std::span<const std::int16_t> samples, int thresholdIndex,
                          std::string_view distanceText, const SpeedSettings& settings) {
    PeakDetection d;
    d.peak = loudestFrom(samples, kFirstWordScanned);
    if (d.peak < kWeakestPeak) {
        d.update.status = Status{"Auto Peak Detect - Weak audio signal", kRed};
        return d;
    }
    // The list has five entries; an index beyond them is taken as the nearest end.
    const int listIndex = std::clamp(thresholdIndex, 0, 4);
    d.threshold = roundToInt(static_cast<double>((listIndex + 3) * d.peak) * 0.1);

    // A peak of at least 2000 against a threshold of at most 70% of it: a first peak exists.
    d.firstPeak = firstAbove(samples, kFirstWordScanned, d.threshold);
    if (!d.firstPeak) {
        return d;
    }
    const int i1 = *d.firstPeak;
    d.update.status = Status{"Auto Peak Detect - 1st peak found", kRed};

    d.secondPeak = firstAbove(samples, static_cast<std::size_t>(i1) + kDeadTimeWords, d.threshold);
    const int i2 = d.secondPeak.value_or(0);
    if (d.secondPeak) {
        d.update.status = Status{"Auto Peak Detect - 2nd peak found", kRed};
    }
    d.selection = WordRange{i1 - kSelectionMarginWords, i2 + kSelectionMarginWords};

    d.deltaTime = DeltaTime(i1, i2);
    if (!(d.deltaTime > 0)) {
        return d;
    }
    d.update.status = Status{"Auto Peak Detect - 2 peaks found", kDarkGreen};
    d.update.deltaTime = Format(d.deltaTime, "#0.0000");

    const std::optional<float> distance = FieldNumber(distanceText);
    if (!distance) {
        d.update.distance = DistanceCheck::NotANumber;
        d.update.speed = kNoSpeed;
        d.update.energy = "";
        return d;
    }
    d.update.distance = DistanceCheck::Number;
    float speed = 0;
    CalcSpeed(*distance, d.deltaTime, speed, settings);
    d.update.speed = Format(speed, "#0.00");
    d.update.energy = Format(Energy(speed), "#.00");
    return d;
}

PaneUpdate SpeedForDistanceChange(std::string_view distanceText, std::string_view deltaTimeText,
                                  const SpeedSettings& settings) {
    PaneUpdate update;
    const std::optional<float> distance = FieldNumber(distanceText);
    if (!distance) {
        update.distance = DistanceCheck::NotANumber;
        update.speed = kNoSpeed;
        return update;
    }
    update.distance = DistanceCheck::Number;
    float speed = 0;
    if (const std::optional<float> deltaTime = FieldNumber(deltaTimeText)) {
        CalcSpeed(*distance, *deltaTime, speed, settings);
    }
    // The speed goes through its shortest text (7 significant digits) before the pattern.
    char text[32];
    std::snprintf(text, sizeof text, "%.7g", static_cast<double>(speed));
    update.speed = Format(parseNumber(text).value_or(0.0), "#0.000");
    return update;
}

PaneUpdate MeasureMarks(int markStart, int markEnd, std::string_view distanceText,
                        const SpeedSettings& settings) {
    PaneUpdate update;
    const float deltaTime = DeltaTime(markStart, markEnd);
    if (!(deltaTime > 0)) {
        return update;
    }
    update.deltaTime = Format(deltaTime, "#0.0000");
    const std::optional<float> distance = FieldNumber(distanceText);
    if (!distance) {
        update.distance = DistanceCheck::NotANumber;
        update.speed = kNoSpeed;
        return update;
    }
    update.distance = DistanceCheck::Number;
    float speed = 0;
    CalcSpeed(*distance, deltaTime, speed, settings);
    update.speed = Format(speed, "#0.00");
    return update;
}

} // namespace ravelcue::breakspeed
