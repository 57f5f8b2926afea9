#pragma once

#include <array>
#include <cstddef>

namespace ravelcue::training {

// The largest and the smallest of three numbers.
inline float Max3(const float& a, const float& b, const float& c) {
    const float ab = b > a ? b : a;
    return c > ab ? c : ab;
}
inline float Min3(const float& a, const float& b, const float& c) {
    const float ab = b < a ? b : a;
    return c < ab ? c : ab;
}

// Hue in degrees (0 up to but not including 360), saturation and lightness in percent, from red,
// green and blue of 0 to 255. Every step is done in 32-bit floats, in the order written, so that
// the same pixel always gives the same figures as the calibration that learnt the target.
void RGBToHSL(int R, int G, int B, float& H, float& S, float& L);

// The steps of RGBToHSL one by one, for a caller that may stop after the hue. Each gives the
// figure RGBToHSL gives.
namespace hsl {

// Every channel of 0 to 255 as a fraction, v / 255, divided once and for all.
inline constexpr std::array<float, 256> kUnits = [] {
    std::array<float, 256> u{};
    for (std::size_t i = 0; i < u.size(); ++i) {
        u[i] = static_cast<float>(i) / 255.0f;
    }
    return u;
}();

inline float unit(int v) {
    return kUnits[static_cast<std::size_t>(v)];
}

inline float lightness(float max, float min) {
    return (max + min) / 2.0f * 100.0f;
}

// Only for max above min. Red wins a tie with green or blue, green a tie with blue.
inline float hue(float r, float g, float b, float max, float min) {
    const float delta = max - min;
    float h = 0.0f;
    if (r == max) {
        h = (g - b) / delta;
    } else if (g == max) {
        h = 2.0f + (b - r) / delta;
    } else {
        h = 4.0f + (r - g) / delta;
    }
    h = h * 60.0f;
    if (h < 0.0f) {
        h = h + 360.0f;
    }
    return h;
}

// Only for max above min.
inline float saturation(float max, float min, float lightness) {
    if (lightness <= 50.0f) {
        return (max - min) / (max + min) * 100.0f;
    }
    return (max - min) / (2.0f - max - min) * 100.0f;
}

} // namespace hsl

} // namespace ravelcue::training
