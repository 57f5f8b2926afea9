#pragma once

#include <string>
#include <string_view>

namespace ravelcue {

// Writes a number through a picture such as "#0.00", the way every figure on screen and in files
// of this program is written:
//   "0"  a digit, always (leading and trailing zeros included)
//   "#"  a digit only where the number has one: no leading zeros, no trailing fraction zeros
//   "."  the decimal point (the first one; it is always written when the pattern has one)
//   ","  between digit places: thousands marks; right after the last integer place: divide by 1000
//   "%"  multiply by 100 and write "%"
//   "\x" the character x as it stands; "text" the text between the quotes as it stands
//   anything else is written as it stands, where it stands ("0.0°" -> "12.3°")
// "Fixed" (any case) is "0.00". The number is first read at 15 significant digits and then rounded
// to the places shown, a tie going away from zero (2.5 -> "3", 1.005 -> "1.01"). Negative numbers
// get a leading "-", unless they round to zero: "-0" is never written.
std::string Format(double value, std::string_view pattern);

} // namespace ravelcue
