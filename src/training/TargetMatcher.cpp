#include "TargetMatcher.h"

namespace ravelcue::training {

namespace {

constexpr std::size_t kPairs = 256 * 256;

} // namespace

TargetMatcher::TargetMatcher(const TargetColour& target)
    : target_(target)
    , saturationAndLightness_(kPairs, kUnjudged) {
    for (std::size_t sixth = 0; sixth < sixths_.size(); ++sixth) {
        const float start = 60.0f * static_cast<float>(sixth);
        const float end = start + 60.0f;
        for (const float centre :
             {target.Hthresh, target.Hthresh - 360.0f, target.Hthresh + 360.0f}) {
            // The limits as reach::within takes them.
            const float from = centre - reach::kHue;
            const float to = centre + reach::kHue;
            if (from <= end && to >= start) {
                const double middle = (static_cast<double>(from) + to) / 2.0;
                sixths_[sixth] = {middle, to - middle};
            }
        }
    }
    greyInReach_ = reach::hue(target, 0.0f);
}

std::uint8_t TargetMatcher::judge(int max, int min) const {
    const float top = hsl::unit(max);
    const float bottom = hsl::unit(min);
    const float l = hsl::lightness(top, bottom);
    const float s = max == min ? 0.0f : hsl::saturation(top, bottom, l);
    return reach::saturationAndLightness(target_, s, l) ? kInReach : kOutOfReach;
}

} // namespace ravelcue::training
