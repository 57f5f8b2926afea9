#pragma once

#include <cfenv>
#include <cmath>
#include <cstdint>

namespace ravelcue {

// Rounds to the nearest integer, a tie going to the even neighbour (2.5 -> 2, 3.5 -> 4), as every
// float-to-integer conversion of this program does.
inline std::int64_t roundHalfEven(double value) {
    const double down = std::floor(value);
    const double fraction = value - down;
    if (fraction > 0.5) {
        return static_cast<std::int64_t>(down) + 1;
    }
    if (fraction < 0.5) {
        return static_cast<std::int64_t>(down);
    }
    const auto even = static_cast<std::int64_t>(down);
    return (even % 2 == 0) ? even : even + 1;
}

inline int roundToInt(double value) {
    return static_cast<int>(roundHalfEven(value));
}

} // namespace ravelcue
