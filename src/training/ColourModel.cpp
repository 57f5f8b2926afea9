#include "ColourModel.h"

namespace ravelcue::training {

void RGBToHSL(int R, int G, int B, float& H, float& S, float& L) {
    const float r = hsl::unit(R);
    const float g = hsl::unit(G);
    const float b = hsl::unit(B);
    const float max = Max3(r, g, b);
    const float min = Min3(r, g, b);
    L = hsl::lightness(max, min);
    if (max == min) {
        H = 0.0f;
        S = 0.0f;
        return;
    }
    S = hsl::saturation(max, min, L);
    H = hsl::hue(r, g, b, max, min);
}

} // namespace ravelcue::training
