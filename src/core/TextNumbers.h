#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ravelcue {

// The leading decimal number of a text, as far as it goes ("30fps" -> 30, "abc" -> 0, " 29.97"
// -> 29.97). Blanks before the number are skipped.
double leadingNumber(std::string_view text);

// A whole text read as a number: optional blanks around one decimal number with an optional sign,
// fraction and exponent. Anything else, the empty text included, gives nothing.
std::optional<double> parseNumber(std::string_view text);

// parseNumber rounded to an integer (ties to even) and kept only when it lies in [min, max].
std::optional<long long> parseInteger(std::string_view text, long long min, long long max);

// The shortest text that reads back as the same 32-bit float: 48 -> "48", 90.25 -> "90.25".
std::string floatText(float value);

} // namespace ravelcue
