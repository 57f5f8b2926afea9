#include "core/Geometry.h"

#include <gtest/gtest.h>

namespace ravelcue::geometry {
namespace {

constexpr float kPi = 3.14159265f;

struct AngleCase {
    const char* what;
    float ax, ay, bx, by, cx, cy;
    float radians;
};

class GetAngleTest : public testing::TestWithParam<AngleCase> {};

TEST_P(GetAngleTest, GivesTheSignedAngleFromTheFirstLegToTheSecond) {
    const AngleCase& c = GetParam();
    EXPECT_FLOAT_EQ(GetAngle(c.ax, c.ay, c.bx, c.by, c.cx, c.cy), c.radians) << c.what;
}

// y grows downwards, as on screen.
INSTANTIATE_TEST_SUITE_P(
    Legs, GetAngleTest,
    testing::Values(AngleCase{"right, then down", 10, 0, 0, 0, 0, 10, kPi / 2},
                    AngleCase{"right, then up", 10, 0, 0, 0, 0, -10, -kPi / 2},
                    AngleCase{"opposite sides in one line", 10, 5, 5, 5, -3, 5, kPi},
                    AngleCase{"same direction", 10, 5, 5, 5, 20, 5, 0.0f},
                    AngleCase{"first leg of zero length", 5, 5, 5, 5, 9, 1, kPi / 2},
                    AngleCase{"45 degrees below", 10, 0, 0, 0, 10, 10, kPi / 4},
                    AngleCase{"135 degrees above", 10, 0, 0, 0, -10, -10, -3 * kPi / 4}));

TEST(ATan2, TakesTheOppositeSideFirstAndKeepsPlusPiForAZeroOppositeSide) {
    EXPECT_FLOAT_EQ(ATan2(0.0f, -1.0f), kPi);
    EXPECT_FLOAT_EQ(ATan2(1.0f, 0.0f), kPi / 2);
    EXPECT_FLOAT_EQ(ATan2(-1.0f, 0.00009f), -kPi / 2);
    EXPECT_FLOAT_EQ(ATan2(1.0f, 1.0f), kPi / 4);
    EXPECT_FLOAT_EQ(ATan2(-1.0f, -1.0f), -3 * kPi / 4);
}

TEST(Products, FollowTheVertexInTheMiddle) {
    EXPECT_FLOAT_EQ(DotProduct(3, 1, 1, 1, 1, 4), 0.0f);
    EXPECT_FLOAT_EQ(CrossProduct(3, 1, 1, 1, 1, 4), 6.0f);
    EXPECT_FLOAT_EQ(DotProduct(4, 5, 1, 1, 2, 3), 3.0f * 1.0f + 4.0f * 2.0f);
}

} // namespace
} // namespace ravelcue::geometry
