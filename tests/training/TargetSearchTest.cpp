#include "TestFrames.h"

#include <optional>
#include <vector>

#include <gtest/gtest.h>

namespace ravelcue::training::test {
namespace {

constexpr Rgb kWhite{255, 255, 255};

void fillSample(TestFrame& frame, Rgb a, Rgb b, int countOfA) {
    int n = 0;
    for (int y = 202; y <= 208; ++y) {
        for (int x = 302; x <= 308; ++x) {
            frame.set(x, y, n++ < countOfA ? a : b);
        }
    }
}

TEST(CalibrationSample, AveragesTheSevenBySevenInsideTheSquareOnly) {
    TestFrame frame;
    // 24 x 100 + 25 x 101 = 4925 reds: 100.51 truncates to 100.
    fillSample(frame, {100, 20, 40}, {101, 21, 41}, 24);
    // The square's edge lines and everything outside them are not sampled.
    for (int i = 300; i <= 310; ++i) {
        for (const int edge : {200, 201, 209, 210}) {
            frame.set(i, edge, kWhite);
            frame.set(edge + 100, i - 100, kWhite);
        }
    }
    const std::optional<TargetColour> sample = CalibrationSample(frame.view());
    ASSERT_TRUE(sample);
    EXPECT_EQ(sample->Rthresh, 100);
    EXPECT_EQ(sample->Gthresh, 20);
    EXPECT_EQ(sample->Bthresh, 40);
    // Hue 345 for both; saturations 66.7 and 65.6, lightnesses 23.5 and 23.9: the sums are
    // rounded, divided by 49 and truncated.
    EXPECT_EQ(sample->Hthresh, 345);
    EXPECT_EQ(sample->Sthresh, 66);
    EXPECT_EQ(sample->Lthresh, 23);
}

TEST(CalibrationSample, NeedsAWholeFrame) {
    EXPECT_FALSE(CalibrationSample(LiveFrameView({})));
    const std::vector<unsigned char> short_(kFrameBytes - 1, 200);
    EXPECT_FALSE(CalibrationSample(LiveFrameView(short_)));
}

TEST(CalibrationSample, AveragesRedsOnBothSidesOfZeroToARed) {
    TestFrame frame;
    // Hues 357.6 and 2.4: read as a plain number they would average to about 180, cyan.
    fillSample(frame, {255, 0, 10}, {255, 10, 0}, 25);
    const TargetColour red = *CalibrationSample(frame.view());
    EXPECT_EQ(red.Hthresh, 359);
    EXPECT_TRUE(Matches(red, {255, 0, 10}));
    EXPECT_TRUE(Matches(red, {255, 35, 0})) << "hue 8.2";
    EXPECT_FALSE(Matches(red, {255, 0, 255})) << "magenta";

    fillSample(frame, {255, 0, 10}, {255, 10, 0}, 24);
    EXPECT_EQ(CalibrationSample(frame.view())->Hthresh, 0) << "the mean crosses 360";
}

struct MatchCase {
    const char* what;
    TargetColour target;
    Rgb pixel;
    bool matches;
};

class MatchesTest : public testing::TestWithParam<MatchCase> {};

TEST_P(MatchesTest, TakesHueAroundTheCircleAndEveryLimitIncluded) {
    const MatchCase& c = GetParam();
    EXPECT_EQ(Matches(c.target, c.pixel), c.matches) << c.what;
}

constexpr Rgb kGreen{0, 255, 0}; // H 120, S 100, L 50
constexpr Rgb kRed{255, 0, 0};   // H 0

INSTANTIATE_TEST_SUITE_P(
    Limits, MatchesTest,
    testing::Values(MatchCase{"hue 10 above", {130, 100, 50, 1, 1, 1}, kGreen, true},
                    MatchCase{"hue 11 above", {131, 100, 50, 1, 1, 1}, kGreen, false},
                    MatchCase{"hue 10 below", {110, 100, 50, 1, 1, 1}, kGreen, true},
                    MatchCase{"hue 11 below", {109, 100, 50, 1, 1, 1}, kGreen, false},
                    MatchCase{"0 against 350", {350, 100, 50, 1, 1, 1}, kRed, true},
                    MatchCase{"0 against 349", {349, 100, 50, 1, 1, 1}, kRed, false},
                    MatchCase{"359.3 against 9", {9, 100, 50, 1, 1, 1}, {255, 0, 3}, true},
                    MatchCase{"359.3 against 10", {10, 100, 50, 1, 1, 1}, {255, 0, 3}, false},
                    MatchCase{"saturation 30 under", {120, 70, 50, 1, 1, 1}, kGreen, true},
                    MatchCase{"saturation 31 under", {120, 69, 50, 1, 1, 1}, kGreen, false},
                    MatchCase{"lightness 20 under", {120, 100, 30, 1, 1, 1}, kGreen, true},
                    MatchCase{"lightness 21 under", {120, 100, 29, 1, 1, 1}, kGreen, false},
                    MatchCase{"lightness 20 over", {120, 100, 70, 1, 1, 1}, kGreen, true},
                    MatchCase{"lightness 21 over", {120, 100, 71, 1, 1, 1}, kGreen, false}));

using Points = std::vector<TargetPoint>;

TestFrame frameWith(const Points& targets) {
    TestFrame frame;
    for (const TargetPoint& p : targets) {
        frame.set(p.x, p.y, kGreenTarget);
    }
    return frame;
}

struct ScanCase {
    const char* what;
    Points targets;
    std::optional<TargetPoint> found;
};

class FirstTargetTest : public testing::TestWithParam<ScanCase> {};

TEST_P(FirstTargetTest, IsTheTopmostThenLeftmostMatchInTheRegion) {
    const ScanCase& c = GetParam();
    const TestFrame frame = frameWith(c.targets);
    TargetMatcher matcher(targetOf(kGreenTarget));
    EXPECT_EQ(FindFirstTarget(frame.view(), matcher), c.found) << c.what;
}

INSTANTIATE_TEST_SUITE_P(
    Frames, FirstTargetTest,
    testing::Values(
        ScanCase{"empty picture", {}, std::nullopt},
        ScanCase{
            "topmost, then leftmost", {{300, 120}, {200, 120}, {100, 130}}, TargetPoint{200, 120}},
        ScanCase{"outside the region", {{49, 60}, {591, 60}, {60, 49}, {60, 431}}, std::nullopt},
        ScanCase{"the region's far corner", {{590, 430}}, TargetPoint{590, 430}},
        ScanCase{"the region's near corner", {{50, 50}, {51, 50}}, TargetPoint{50, 50}}));

// The scan skips a pixel the colour of the one before it; one channel of difference is enough
// to be judged.
TEST(FirstTarget, FollowsAPixelThatDiffersInOneChannelOnly) {
    for (const Rgb before : {Rgb{250, 210, 30}, Rgb{70, 40, 30}, Rgb{70, 210, 200}}) {
        TestFrame frame;
        frame.set(199, 120, before);
        frame.set(200, 120, kGreenTarget);
        TargetMatcher matcher(targetOf(kGreenTarget));
        EXPECT_EQ(FindFirstTarget(frame.view(), matcher), (TargetPoint{200, 120}))
            << before.r << ", " << before.g << ", " << before.b;
    }
}

struct FollowingCase {
    const char* what;
    TargetPoint from;
    Points targets;
    std::optional<TargetPoint> found;
};

class SecondTargetTest : public testing::TestWithParam<FollowingCase> {};

TEST_P(SecondTargetTest, LiesAtLeast75RowsUnderAndAtMost100ColumnsAside) {
    const FollowingCase& c = GetParam();
    const TestFrame frame = frameWith(c.targets);
    TargetMatcher matcher(targetOf(kGreenTarget));
    EXPECT_EQ(FindSecondTarget(frame.view(), matcher, c.from), c.found) << c.what;
}

INSTANTIATE_TEST_SUITE_P(
    Frames, SecondTargetTest,
    testing::Values(
        FollowingCase{"74 rows under", {300, 100}, {{300, 174}}, std::nullopt},
        FollowingCase{"75 rows under", {300, 100}, {{300, 175}}, TargetPoint{300, 175}},
        FollowingCase{"100 columns right", {300, 100}, {{400, 200}}, TargetPoint{400, 200}},
        FollowingCase{"101 columns right", {300, 100}, {{401, 200}}, std::nullopt},
        FollowingCase{"100 columns left", {300, 100}, {{200, 200}}, TargetPoint{200, 200}},
        FollowingCase{"101 columns left", {300, 100}, {{199, 200}}, std::nullopt},
        FollowingCase{"under the region", {300, 100}, {{300, 431}}, std::nullopt},
        FollowingCase{"left of the region", {60, 100}, {{10, 200}}, TargetPoint{10, 200}},
        // Column -20 of row 199 would be read from the bytes of (620, 200).
        FollowingCase{"columns before 0 skipped", {50, 100}, {{620, 200}}, std::nullopt},
        FollowingCase{"columns after 639 skipped", {590, 100}, {{20, 199}}, std::nullopt}));

class ThirdTargetTest : public testing::TestWithParam<FollowingCase> {};

TEST_P(ThirdTargetTest, StartsOnTheSecondsRowOutsideTheColumnsAroundIt) {
    const FollowingCase& c = GetParam();
    const TestFrame frame = frameWith(c.targets);
    TargetMatcher matcher(targetOf(kGreenTarget));
    EXPECT_EQ(FindThirdTarget(frame.view(), matcher, c.from), c.found) << c.what;
}

INSTANTIATE_TEST_SUITE_P(
    Frames, ThirdTargetTest,
    testing::Values(
        FollowingCase{"100 columns right on its row", {300, 300}, {{400, 300}}, std::nullopt},
        FollowingCase{
            "101 columns right on its row", {300, 300}, {{401, 300}}, TargetPoint{401, 300}},
        FollowingCase{"100 columns left", {300, 300}, {{200, 300}}, std::nullopt},
        FollowingCase{"101 columns left", {300, 300}, {{199, 300}}, TargetPoint{199, 300}},
        FollowingCase{"a row above", {300, 300}, {{450, 299}}, std::nullopt},
        FollowingCase{
            "left before right", {300, 350}, {{500, 350}, {60, 350}}, TargetPoint{60, 350}},
        FollowingCase{"right of the region", {300, 300}, {{591, 350}}, std::nullopt}));

} // namespace
} // namespace ravelcue::training::test
