#pragma once

namespace ravelcue::training {

// The largest and the smallest of three numbers.
float Max3(const float& a, const float& b, const float& c);
float Min3(const float& a, const float& b, const float& c);

// Hue in degrees (0 up to but not including 360), saturation and lightness in percent, from red,
// green and blue of 0 to 255. Every step is done in 32-bit floats, in the order written, so that
// the same pixel always gives the same figures as the calibration that learnt the target.
void RGBToHSL(int R, int G, int B, float& H, float& S, float& L);

} // namespace ravelcue::training
