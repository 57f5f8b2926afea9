#include "TestFrames.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <sstream>

#include <gtest/gtest.h>

namespace ravelcue::training::test {
namespace {

// What lets the matcher take most hues from whole numbers: the conversion's hue is never
// further than half the slack from the exact one.
TEST(TargetMatcher, HueSlackCoversTheConversionsRounding) {
    double worst = 0.0;
    for (int r = 0; r < 256; ++r) {
        for (int g = 0; g < 256; ++g) {
            for (int b = 0; b < 256; ++b) {
                const int max = std::max({r, g, b});
                const int delta = max - std::min({r, g, b});
                if (delta == 0) {
                    continue;
                }
                double exact = 0.0;
                if (r == max) {
                    exact = 60.0 * (g - b) / delta + (g < b ? 360.0 : 0.0);
                } else if (g == max) {
                    exact = 60.0 * (2.0 + double(b - r) / delta);
                } else {
                    exact = 60.0 * (4.0 + double(r - g) / delta);
                }
                float h = 0.0f;
                float s = 0.0f;
                float l = 0.0f;
                RGBToHSL(r, g, b, h, s, l);
                worst = std::max(worst, std::fabs(double(h) - exact));
            }
        }
    }
    EXPECT_LT(worst, TargetMatcher::kHueSlack / 2) << "the largest difference";
}

struct MatcherCase {
    const char* what;
    TargetColour target;
};

class TargetMatcherTest : public testing::TestWithParam<MatcherCase> {};

// Every one of the 16,777,216 colours, against the plain conversion and rule.
TEST_P(TargetMatcherTest, AnswersAsTheRuleForEveryColour) {
    const MatcherCase& c = GetParam();
    TargetMatcher matcher(c.target);
    std::int64_t differences = 0;
    std::int64_t matches = 0;
    std::ostringstream first;
    for (int r = 0; r < 256; ++r) {
        for (int g = 0; g < 256; ++g) {
            for (int b = 0; b < 256; ++b) {
                const bool expected = Matches(c.target, {r, g, b});
                matches += expected ? 1 : 0;
                if (matcher.matches(r, g, b) != expected && differences++ < 5) {
                    first << " (" << r << ", " << g << ", " << b << ")";
                }
            }
        }
    }
    EXPECT_EQ(differences, 0) << c.what << ", first:" << first.str();
    EXPECT_GT(matches, 0) << c.what << ": a target nothing matches proves little";
}

// Hue, saturation, lightness, then red, green and blue, which the matcher doesn't use.
INSTANTIATE_TEST_SUITE_P(
    Targets, TargetMatcherTest,
    testing::Values(
        MatcherCase{"red at 0: the reach crosses 360, greys just out", {0, 31, 50, 255, 0, 0}},
        MatcherCase{"359: the reach crosses 0", {359, 66, 23, 100, 20, 40}},
        MatcherCase{"60: the reach on both sides of a sixth's end", {60, 80, 60, 0, 0, 0}},
        MatcherCase{"green of the demo targets", {104, 75, 47, 70, 210, 30}},
        MatcherCase{"cyan-green, one sixth only", {150, 40, 30, 0, 0, 0}},
        MatcherCase{"blue", {240, 100, 50, 0, 0, 255}},
        MatcherCase{"a broken hue near magenta", {300.5f, 20.5f, 80.25f, 0, 0, 0}},
        MatcherCase{"grey: no hue counts as 0", {5, 0, 50, 128, 128, 128}}));

} // namespace
} // namespace ravelcue::training::test
