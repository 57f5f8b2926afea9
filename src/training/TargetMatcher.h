#pragma once

#include "ColourModel.h"
#include "TargetSearch.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace ravelcue::training {

// The reaches of a match, limits included.
namespace reach {

inline constexpr float kHue = 10.0f;
inline constexpr float kSaturation = 30.0f;
inline constexpr float kLightness = 20.0f;

// Both limits tested without a branch between them.
inline bool within(float value, float centre, float range) {
    return (value >= centre - range) & (value <= centre + range);
}

// Around the circle: a hue near 0 may match a target near 360 and the other way round.
inline bool hue(const TargetColour& target, float h) {
    return within(h, target.Hthresh, kHue) || within(h, target.Hthresh - 360.0f, kHue) ||
           within(h, target.Hthresh + 360.0f, kHue);
}

inline bool saturationAndLightness(const TargetColour& target, float s, float l) {
    return within(s, target.Sthresh, kSaturation) && within(l, target.Lthresh, kLightness);
}

} // namespace reach

// Matches for every pixel of a scan, with its answer for every colour but without converting
// most of them. Saturation and lightness follow from the largest and the smallest channel
// alone, so their verdict is worked out once per pair, the first time a scan meets it. The hue
// lies in the sixth of the circle that the order of the channels gives (red largest and green
// above blue: 0 to 60, and so on, the ends included); a sixth the target's reach doesn't touch
// needs no hue at all. In the others the hue is first taken exactly from the whole numbers,
// without a division, and only a hue within kHueSlack of the reach's ends is converted in
// floats. One scan's helper: not to be shared between threads.
class TargetMatcher {
public:
    // The conversion's hue is never further than half this from the exact hue of the whole
    // numbers: 60 x (the difference of the other two channels) / (largest - smallest), plus
    // the sixth's start.
    static constexpr double kHueSlack = 0.01;

    explicit TargetMatcher(const TargetColour& target);

    [[gnu::always_inline]] bool matches(int r, int g, int b) {
        // Paired differently, so that the compiler doesn't share one comparison between them
        // behind a branch that noise would mispredict.
        const int max = std::max(std::max(r, g), b);
        const int min = std::min(r, std::min(g, b));
        std::uint8_t& verdict = saturationAndLightness_[static_cast<std::size_t>(max << 8 | min)];
        if (verdict == kUnjudged) {
            verdict = judge(max, min);
        }
        if (verdict == kOutOfReach) {
            return false;
        }
        return hueMatches(r, g, b, max, min);
    }

private:
    enum : std::uint8_t { kUnjudged, kInReach, kOutOfReach };
    static constexpr std::size_t kGrey = 6; // no hue: it counts as 0

    // The one reach of the three around the circle (the target's, 360 under and 360 over)
    // that touches a sixth, by its middle and half its width; they lie too far apart for two.
    // A sixth no reach touches has one far away.
    struct Sixth {
        double middle = -1000.0;
        double halfWidth = 0.0;
    };

    std::uint8_t judge(int max, int min) const;

    [[gnu::always_inline]] bool hueMatches(int r, int g, int b, int max, int min) const {
        if (max == min) {
            return greyInReach_;
        }
        // The hue is 60 x (2 x top + difference / delta) degrees, plus 360 when red is the
        // largest and green under blue; red wins a tie with green or blue, green with blue.
        // Worked out without branches: which channel is largest varies from pixel to pixel.
        const int top = (r != max) * (1 + (g != max)); // 0 red, 1 green, 2 blue
        const std::array<int, 5> channels{r, g, b, r, g};
        const int difference = channels[static_cast<std::size_t>(top) + 1] -
                               channels[static_cast<std::size_t>(top) + 2];
        const int below = difference < 0;
        const auto sixth = static_cast<std::size_t>((2 * top + 6 - below) % 6);
        const Sixth& reach = sixths_[sixth];
        // Everything times delta, exact in doubles but for the slack.
        const int delta = max - min;
        const int start = 2 * top + 6 * (sixth == 5);
        const double hue = 60.0 * static_cast<double>(start * delta + difference);
        const double off = std::fabs(hue - reach.middle * delta);
        if (off > (reach.halfWidth + kHueSlack) * delta) {
            return false; // also where the reach doesn't touch the sixth
        }
        if (off < (reach.halfWidth - kHueSlack) * delta) {
            return true;
        }
        return reach::hue(target_, hsl::hue(hsl::unit(r), hsl::unit(g), hsl::unit(b),
                                            hsl::unit(max), hsl::unit(min)));
    }

    TargetColour target_;
    std::array<Sixth, 6> sixths_{};
    bool greyInReach_ = false;
    // By largest channel x 256 + smallest.
    std::vector<std::uint8_t> saturationAndLightness_;
};

} // namespace ravelcue::training
