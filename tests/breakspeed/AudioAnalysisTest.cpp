#include "breakspeed/AudioAnalysis.h"

#include "Recordings.h"

#include <gtest/gtest.h>

namespace ravelcue::breakspeed {
namespace {

using test::Silence;
using test::Sound;

constexpr SpeedSettings kInches{0, 0};
constexpr SpeedSettings kInchesCueball{0, 1};
constexpr SpeedSettings kCentimetres{1, 0};
constexpr SpeedSettings kCentimetresCueball{1, 1};
const Status kWeak{"Auto Peak Detect - Weak audio signal", kRed};

// Two sounds 8820 words (0.1 s) apart: the shot of the worked example.
AudioSamples WorkedExample() {
    AudioSamples samples = Silence(60000);
    Sound(samples, 20000, 10000);
    Sound(samples, 28820, 10000);
    return samples;
}

bool NoResults(const PaneUpdate& u) {
    return !u.deltaTime && !u.speed && !u.energy;
}

TEST(DetectPeaks, WorkedExampleInBothUnitsWithAndWithoutTheCueBall) {
    const AudioSamples samples = WorkedExample();
    const PeakDetection d = DetectPeaks(samples, 2, "48", kInches);
    EXPECT_EQ(d.peak, 10000);
    EXPECT_EQ(d.threshold, 5000);
    EXPECT_EQ(d.firstPeak, 20000);
    EXPECT_EQ(d.secondPeak, 28820);
    EXPECT_EQ(d.selection, (WordRange{15000, 33820}));
    EXPECT_EQ(d.update.status, (Status{"Auto Peak Detect - 2 peaks found", kDarkGreen}));
    EXPECT_EQ(d.update.deltaTime, "0.1000");
    EXPECT_EQ(d.update.distance, DistanceCheck::Number);

    // Kilometres an hour go into the energy with the mph factor all the same.
    struct Case {
        const char* distance;
        SpeedSettings settings;
        const char* speed;
        const char* energy;
    };
    for (const Case& c :
         {Case{"48", kInches, "27.26", "12.48"}, Case{"48", kInchesCueball, "25.99", "11.33"},
          Case{"100", kCentimetres, "36.00", "21.75"},
          Case{"100", kCentimetresCueball, "33.94", "19.34"}}) {
        const PaneUpdate u = DetectPeaks(samples, 2, c.distance, c.settings).update;
        EXPECT_EQ(u.speed, c.speed) << c.speed;
        EXPECT_EQ(u.energy, c.energy) << c.speed;
    }
}

TEST(DetectPeaks, WeakSignalBoundariesAndChannels) {
    for (const int level : {1999, 2000}) {
        AudioSamples samples = Silence(20000);
        Sound(samples, 5000, level);
        const PeakDetection d = DetectPeaks(samples, 2, "48", kInches);
        EXPECT_EQ(d.update.status == kWeak, level < 2000) << level;
        EXPECT_EQ(d.firstPeak.has_value(), level >= 2000) << level;
    }
    // Loud but negative with a little positive noise; loud only in the right channel (odd
    // words); loud only in the header and first moments, which are never looked at.
    AudioSamples negative = Silence(20000);
    Sound(negative, 5000, -30000);
    Sound(negative, 9000, 100);
    AudioSamples right = Silence(20000);
    Sound(right, 5001, 30000);
    AudioSamples early = Silence(20000);
    Sound(early, 0, 30000, 500);
    for (const AudioSamples* samples : {&negative, &right, &early}) {
        const PeakDetection d = DetectPeaks(*samples, 2, "48", kInches);
        EXPECT_EQ(d.update.status, kWeak);
        EXPECT_TRUE(NoResults(d.update) && !d.selection);
    }
}

TEST(DetectPeaks, ScansStopOneWordBeforeTheLast) {
    // With n words the scans look at even words up to n - 2: none at all for n <= 1001.
    for (const int words : {0, 1, 999, 1000, 1001}) {
        const AudioSamples samples(static_cast<size_t>(words), 30000);
        EXPECT_EQ(DetectPeaks(samples, 2, "48", kInches).update.status, kWeak) << words;
    }
    AudioSamples justLongEnough = Silence(1002);
    justLongEnough[1000] = 30000;
    const PeakDetection d = DetectPeaks(justLongEnough, 2, "48", kInches);
    EXPECT_EQ(d.firstPeak, 1000);
    EXPECT_EQ(d.update.status->text, "Auto Peak Detect - 1st peak found");
    // An odd count ends on an even word, and that word is past the scan.
    AudioSamples odd = Silence(3001);
    odd[3000] = 30000;
    EXPECT_EQ(DetectPeaks(odd, 2, "48", kInches).peak, 0);
}

TEST(DetectPeaks, ThresholdIsStrictAndRoundsTiesToEven) {
    // 50% of 10000 is 5000: a word of exactly 5000 is no peak, 5001 is, though not the loudest.
    for (const int early : {5000, 5001}) {
        AudioSamples samples = Silence(30000);
        Sound(samples, 2000, early, 1);
        Sound(samples, 12000, 10000);
        EXPECT_EQ(DetectPeaks(samples, 2, "48", kInches).firstPeak, early == 5000 ? 12000 : 2000);
    }
    // 5 x 2005 x 0.1 = 1002.5 -> 1002; 3 x 2005 x 0.1 = 601.5 -> 602.
    AudioSamples samples = Silence(30000);
    Sound(samples, 12000, 2005);
    EXPECT_EQ(DetectPeaks(samples, 2, "48", kInches).threshold, 1002);
    EXPECT_EQ(DetectPeaks(samples, 0, "48", kInches).threshold, 602);
    EXPECT_EQ(DetectPeaks(samples, 4, "48", kInches).threshold, 1404);
}

TEST(DetectPeaks, NothingCountsAsSecondPeakWithinTheDeadTime) {
    for (const int gap : {5098, 5100}) {
        AudioSamples samples = Silence(60000);
        Sound(samples, 10000, 10000, 1);
        Sound(samples, 10000 + gap, 10000, 1);
        Sound(samples, 30000, 10000, 1);
        const PeakDetection d = DetectPeaks(samples, 2, "48", kInches);
        EXPECT_EQ(d.firstPeak, 10000);
        EXPECT_EQ(d.secondPeak, gap == 5098 ? 30000 : 15100) << gap;
    }
}

TEST(DetectPeaks, WithoutASecondPeakTheFieldsStayAndTheListRemeasures) {
    // The second sound is 55% of the first: under 70%, over 30%.
    AudioSamples samples = Silence(60000);
    Sound(samples, 1500, 10000);
    Sound(samples, 20000, 5500);
    const PeakDetection strict = DetectPeaks(samples, 4, "48", kInches);
    EXPECT_EQ(strict.update.status, (Status{"Auto Peak Detect - 1st peak found", kRed}));
    EXPECT_FALSE(strict.secondPeak);
    EXPECT_TRUE(NoResults(strict.update));
    EXPECT_LE(strict.deltaTime, 0);
    // The stretch is still set, from 5000 before the first peak (below 0 here) to word 5000.
    EXPECT_EQ(strict.selection, (WordRange{-3500, 5000}));
    EXPECT_EQ(DetectPeaks(samples, 0, "48", kInches).update.deltaTime, "0.2098");
}

TEST(Analysis, ADistanceThatIsNoNumberComputesNothingFromIt) {
    const PeakDetection d = DetectPeaks(WorkedExample(), 2, "4x8", kInches);
    EXPECT_EQ(d.update.status->text, "Auto Peak Detect - 2 peaks found");
    EXPECT_EQ(d.update.deltaTime, "0.1000"); // the peaks don't depend on the distance
    EXPECT_EQ(d.update.energy, "");
    const PaneUpdate edited = SpeedForDistanceChange("", "0.1000", kInches);
    const PaneUpdate marked = MeasureMarks(0, 8820, "abc", kInches);
    EXPECT_EQ(marked.deltaTime, "0.1000");
    // No speed of an older distance may stay on show.
    for (const PaneUpdate& u : {d.update, edited, marked}) {
        EXPECT_EQ(u.speed, "0.000");
        EXPECT_EQ(u.distance, DistanceCheck::NotANumber);
    }
}

TEST(Analysis, EditingTheDistanceWritesThreeDecimalsAndMarksTwo) {
    EXPECT_EQ(SpeedForDistanceChange("48", "0.1000", kInches).speed, "27.264");
    EXPECT_EQ(SpeedForDistanceChange(" 48 ", "0.1000", kInchesCueball).speed, "25.986");
    // A distance shorter than the ball gives a negative speed, unchecked.
    EXPECT_EQ(SpeedForDistanceChange("2", "0.1000", kInchesCueball).speed, "-0.142");
    // No delta time yet (or 0): the speed reads 0.000, and the energy is never touched.
    for (const char* deltaTime : {"", "0.0000"}) {
        const PaneUpdate u = SpeedForDistanceChange("48", deltaTime, kInches);
        EXPECT_EQ(u.speed, "0.000");
        EXPECT_EQ(u.distance, DistanceCheck::Number);
        EXPECT_FALSE(u.energy);
    }

    const PaneUpdate marked = MeasureMarks(1000, 9820, "48", kInches);
    EXPECT_EQ(marked.deltaTime, "0.1000");
    EXPECT_EQ(marked.speed, "27.26");
    EXPECT_FALSE(marked.energy);
    // A click without a drag, or a drag to the left: nothing.
    for (const auto& [from, to] : {std::pair{500, 500}, std::pair{9820, 1000}}) {
        const PaneUpdate none = MeasureMarks(from, to, "48", kInches);
        EXPECT_TRUE(NoResults(none));
        EXPECT_EQ(none.distance, DistanceCheck::NotRead);
    }
    // The calibration tone: one second marked across its ends reads 5.00.
    EXPECT_EQ(MeasureMarks(0, 88200, "90.25", kInchesCueball).speed, "5.00");
    EXPECT_EQ(MeasureMarks(0, 88200, "144.605", kCentimetresCueball).speed, "5.00");
}

TEST(LoadAudioFile, ReadsWholeWordsFromByteZero) {
    test::ScratchFolder folder;
    EXPECT_EQ(LoadAudioFile(folder.file("none.wav")).result, LoadResult::Missing);
    EXPECT_EQ(LoadAudioFile(folder.path()).result, LoadResult::Unreadable);
    struct Case {
        std::string bytes;
        AudioSamples words;
    };
    const Case cases[] = {
        {"", {}},
        {"\x01", {}}, // half a word rounds to none
        {std::string("\x34\x12\xff\xff", 4), {0x1234, -1}},
        {std::string("\x01\x00\x02", 3), {1, 2}},         // 1.5 words -> 2, the last half
        {std::string("\x01\x00\x02\x00\x03", 5), {1, 2}}, // 2.5 -> 2
        {std::string("\x01\x00\x02\x00\x03\x00\x04", 7), {1, 2, 3, 4}}, // 3.5 -> 4
    };
    for (const Case& c : cases) {
        const auto path = folder.file("rec.wav");
        test::WriteBytes(path, c.bytes);
        const LoadedAudio loaded = LoadAudioFile(path);
        EXPECT_EQ(loaded.result, c.words.empty() ? LoadResult::Empty : LoadResult::Loaded)
            << c.bytes.size();
        EXPECT_EQ(loaded.samples, c.words) << c.bytes.size();
    }
    // A limit on the bytes read keeps a huge file out of memory.
    EXPECT_EQ(LoadAudioFile(folder.file("rec.wav"), 4).samples, (AudioSamples{1, 2}));
}

} // namespace
} // namespace ravelcue::breakspeed
