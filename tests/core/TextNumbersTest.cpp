#include "core/TextNumbers.h"

#include "core/Rounding.h"

#include <gtest/gtest.h>

namespace ravelcue {
namespace {

TEST(Rounding, TiesGoToTheEvenNeighbour) {
    EXPECT_EQ(roundHalfEven(2.5), 2);
    EXPECT_EQ(roundHalfEven(3.5), 4);
    EXPECT_EQ(roundHalfEven(-2.5), -2);
    EXPECT_EQ(roundHalfEven(-3.5), -4);
    EXPECT_EQ(roundHalfEven(2.4999), 2);
    EXPECT_EQ(roundHalfEven(2.5001), 3);
    EXPECT_EQ(roundHalfEven(-0.5), 0);
}

TEST(TextNumbers, LeadingNumberReadsAsFarAsItGoes) {
    EXPECT_DOUBLE_EQ(leadingNumber("30"), 30.0);
    EXPECT_DOUBLE_EQ(leadingNumber(" 29.97fps"), 29.97);
    EXPECT_DOUBLE_EQ(leadingNumber("abc"), 0.0);
    EXPECT_DOUBLE_EQ(leadingNumber(""), 0.0);
    EXPECT_DOUBLE_EQ(leadingNumber("1e"), 1.0);
    EXPECT_DOUBLE_EQ(leadingNumber("-.5x"), -0.5);
}

TEST(TextNumbers, WholeTextMustBeANumber) {
    EXPECT_EQ(parseNumber(" 48 "), 48.0);
    EXPECT_EQ(parseNumber("90.25"), 90.25);
    EXPECT_EQ(parseNumber("1e3"), 1000.0);
    EXPECT_FALSE(parseNumber(""));
    EXPECT_FALSE(parseNumber("abc"));
    EXPECT_FALSE(parseNumber("12abc"));
    EXPECT_FALSE(parseNumber("."));
    EXPECT_FALSE(parseNumber("1,5"));
}

TEST(TextNumbers, IntegersRoundAndStayInRange) {
    EXPECT_EQ(parseInteger("2.5", -32768, 32767), 2);
    EXPECT_EQ(parseInteger("32767", -32768, 32767), 32767);
    EXPECT_FALSE(parseInteger("32768", -32768, 32767));
    EXPECT_FALSE(parseInteger("-40000", -32768, 32767));
    EXPECT_FALSE(parseInteger("abc", -32768, 32767));
}

TEST(TextNumbers, FloatTextIsShortestRoundTrip) {
    EXPECT_EQ(floatText(48.0F), "48");
    EXPECT_EQ(floatText(90.25F), "90.25");
    EXPECT_EQ(floatText(144.605F), "144.605");
    EXPECT_EQ(floatText(0.1F), "0.1");
}

} // namespace
} // namespace ravelcue
