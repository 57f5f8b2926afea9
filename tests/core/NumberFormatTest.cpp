#include "core/NumberFormat.h"

#include <gtest/gtest.h>

namespace ravelcue {
namespace {

TEST(NumberFormat, HashPlacesWriteOnlyTheDigitsTheNumberHas) {
    EXPECT_EQ(Format(0.85, "#.00"), ".85");
    EXPECT_EQ(Format(0, "#.00"), ".00");
    EXPECT_EQ(Format(12.3, "#.00"), "12.30");
    EXPECT_EQ(Format(-0.85, "#.00"), "-.85");
    EXPECT_EQ(Format(0, "##"), "");
    EXPECT_EQ(Format(0.4, "##"), "");
    EXPECT_EQ(Format(0.5, "##"), "1");
    EXPECT_EQ(Format(29.97, "##"), "30");
    EXPECT_EQ(Format(123, "##"), "123"); // more digits than places all go into the first one
    EXPECT_EQ(Format(1.5, "0.0#"), "1.5");
    EXPECT_EQ(Format(1.25, "0.0#"), "1.25");
}

TEST(NumberFormat, ZeroPlacesAlwaysWriteADigit) {
    EXPECT_EQ(Format(5, "00"), "05");
    EXPECT_EQ(Format(0, "00"), "00");
    EXPECT_EQ(Format(59, "00"), "59");
    EXPECT_EQ(Format(123, "00"), "123");
    EXPECT_EQ(Format(5, "0#"), "05");
    EXPECT_EQ(Format(0.5, "#0.00"), "0.50");
    EXPECT_EQ(Format(0, "#0.000"), "0.000");
    EXPECT_EQ(Format(static_cast<double>(0.1F), "#0.0000"), "0.1000");
    EXPECT_EQ(Format(27.264, "#0.00"), "27.26");
    EXPECT_EQ(Format(8.333, "Fixed"), "8.33");
    EXPECT_EQ(Format(1234.5, "fixed"), "1234.50");
    EXPECT_EQ(Format(0.004, "Fixed"), "0.00");
}

TEST(NumberFormat, TiesRoundAwayFromZeroOnTheDecimalValue) {
    EXPECT_EQ(Format(2.5, "0"), "3");
    EXPECT_EQ(Format(3.5, "0"), "4");
    EXPECT_EQ(Format(-2.5, "0"), "-3");
    EXPECT_EQ(Format(2.25, "0.0"), "2.3");
    EXPECT_EQ(Format(0.125, "#.00"), ".13");
    // Doubles just below the decimal they were written as still round as that decimal.
    EXPECT_EQ(Format(1.005, "0.00"), "1.01");
    EXPECT_EQ(Format(2.675, "#0.00"), "2.68");
    EXPECT_EQ(Format(0.285, "0.00"), "0.29");
    EXPECT_EQ(Format(12.345, "#.00"), "12.35");
    // ... while a value that differs from the tie in its first 15 digits does not.
    EXPECT_EQ(Format(1.00499999999, "0.00"), "1.00");
    EXPECT_EQ(Format(9.995, "0.00"), "10.00");
    EXPECT_EQ(Format(99.5, "#0"), "100");
}

TEST(NumberFormat, NegativeZeroIsNeverWritten) {
    EXPECT_EQ(Format(-0.004, "0.00"), "0.00");
    EXPECT_EQ(Format(-0.005, "0.00"), "-0.01");
    EXPECT_EQ(Format(-0.4, "##"), "");
    EXPECT_EQ(Format(-0.0, "0.0"), "0.0");
    EXPECT_EQ(Format(-0.04, "0.0°"), "0.0°");
    EXPECT_EQ(Format(-3, "##"), "-3");
}

TEST(NumberFormat, ThousandsMarksAndScaling) {
    EXPECT_EQ(Format(1500, "#,###"), "1,500");
    EXPECT_EQ(Format(0.4, "#,###"), "");
    EXPECT_EQ(Format(12, "#,###"), "12");
    EXPECT_EQ(Format(999.5, "#,###"), "1,000");
    EXPECT_EQ(Format(1234567, "#,###"), "1,234,567");
    EXPECT_EQ(Format(-1500, "#,###"), "-1,500");
    EXPECT_EQ(Format(1234567, "#,##0,"), "1,235"); // a trailing comma divides by 1000
    EXPECT_EQ(Format(1234567.891, "#,##0.00"), "1,234,567.89");
}

TEST(NumberFormat, OtherCharactersStandWhereTheyAre) {
    EXPECT_EQ(Format(-12.34, "0.0°"), "-12.3°");
    EXPECT_EQ(Format(179.96, "0.0°"), "180.0°");
    EXPECT_EQ(Format(-1234.5, "$#,##0.00"), "-$1,234.50");
    EXPECT_EQ(Format(12, "0 \"KB\""), "12 KB");
    EXPECT_EQ(Format(7, "\\#0"), "#7");
    EXPECT_EQ(Format(0.256, "0%"), "26%");
    EXPECT_EQ(Format(12.5, ".00"), "12.50");
}

TEST(NumberFormat, LargeAndTinyValues) {
    EXPECT_EQ(Format(1e15, "0"), "1000000000000000");
    EXPECT_EQ(Format(1e20, "#,###"), "100,000,000,000,000,000,000");
    EXPECT_EQ(Format(1e-300, "0.00"), "0.00");
    EXPECT_EQ(Format(123456789.125, "0.00"), "123456789.13");
}

} // namespace
} // namespace ravelcue
