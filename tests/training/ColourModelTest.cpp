#include "TestFrames.h"

#include <algorithm>
#include <array>

#include <gtest/gtest.h>

namespace ravelcue::training::test {
namespace {

struct HslCase {
    const char* what;
    Rgb rgb;
    float h, s, l;
};

class RGBToHSLTest : public testing::TestWithParam<HslCase> {};

// Figures compared exactly: the run matches pixels against figures of the same arithmetic.
TEST_P(RGBToHSLTest, ConvertsInFloatsStepByStep) {
    const HslCase& c = GetParam();
    float h = -1;
    float s = -1;
    float l = -1;
    RGBToHSL(c.rgb.r, c.rgb.g, c.rgb.b, h, s, l);
    EXPECT_EQ(h, c.h) << c.what;
    EXPECT_EQ(s, c.s) << c.what;
    EXPECT_EQ(l, c.l) << c.what;
}

INSTANTIATE_TEST_SUITE_P(
    Colours, RGBToHSLTest,
    testing::Values(
        HslCase{"white", {255, 255, 255}, 0, 0, 100}, HslCase{"black", {0, 0, 0}, 0, 0, 0},
        HslCase{"grey: no hue, no saturation", {128, 128, 128}, 0, 0, 128.0f / 255.0f * 100.0f},
        HslCase{"red", {255, 0, 0}, 0, 100, 50}, HslCase{"green", {0, 255, 0}, 120, 100, 50},
        HslCase{"blue", {0, 0, 255}, 240, 100, 50}, HslCase{"magenta", {255, 0, 255}, 300, 100, 50},
        // (0 - 10/255) x 60 is negative and comes round to the top of the circle.
        HslCase{"red above blue above green", {255, 0, 10}, 357.647064f, 100, 50},
        // Lightness exactly 50 takes (max - min) / (max + min); the other formula
        // gives 99.2156906 here.
        HslCase{"lightness 50", {1, 1, 254}, 240, 99.215683f, 50},
        HslCase{"light: the second saturation formula", {255, 200, 200}, 0, 100, 89.215683f},
        HslCase{"dark yellow-green", {100, 120, 20}, 72, 71.428566f, 27.4509811f}));

TEST(Max3Min3, TakeTheLargestAndSmallestWhereverTheyStand) {
    for (const auto& [a, b, c] : {std::array{1.f, 2.f, 3.f}, std::array{3.f, 1.f, 2.f},
                                  std::array{2.f, 3.f, 1.f}, std::array{2.f, 2.f, 2.f}}) {
        EXPECT_EQ(Max3(a, b, c), std::max({a, b, c}));
        EXPECT_EQ(Min3(a, b, c), std::min({a, b, c}));
    }
}

} // namespace
} // namespace ravelcue::training::test
