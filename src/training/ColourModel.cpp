#include "ColourModel.h"

namespace ravelcue::training {

float Max3(const float& a, const float& b, const float& c) {
    float largest = a;
    if (b > largest) {
        largest = b;
    }
    if (c > largest) {
        largest = c;
    }
    return largest;
}

float Min3(const float& a, const float& b, const float& c) {
    float smallest = a;
    if (b < smallest) {
        smallest = b;
    }
    if (c < smallest) {
        smallest = c;
    }
    return smallest;
}

void RGBToHSL(int R, int G, int B, float& H, float& S, float& L) {
    const float r = static_cast<float>(R) / 255.0f;
    const float g = static_cast<float>(G) / 255.0f;
    const float b = static_cast<float>(B) / 255.0f;
    const float max = Max3(r, g, b);
    const float min = Min3(r, g, b);
    L = (max + min) / 2.0f * 100.0f;
    if (max == min) {
        H = 0.0f;
        S = 0.0f;
        return;
    }
    if (L <= 50.0f) {
        S = (max - min) / (max + min) * 100.0f;
    } else {
        S = (max - min) / (2.0f - max - min) * 100.0f;
    }
    const float delta = max - min;
    // Red wins a tie with green or blue, green a tie with blue.
    if (r == max) {
        H = (g - b) / delta;
    } else if (g == max) {
        H = 2.0f + (b - r) / delta;
    } else {
        H = 4.0f + (r - g) / delta;
    }
    H = H * 60.0f;
    if (H < 0.0f) {
        H = H + 360.0f;
    }
}

} // namespace ravelcue::training
