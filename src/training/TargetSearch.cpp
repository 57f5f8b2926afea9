#include "TargetSearch.h"

#include "ColourModel.h"
#include "TargetMatcher.h"
#include "core/Rounding.h"

#include <algorithm>
#include <array>

namespace ravelcue::training {

namespace {

constexpr int kSampleFirst = 2; // the sample starts this far inside the square
constexpr int kSampleSide = 7;
constexpr int kSampleCount = kSampleSide * kSampleSide;

// The mean of whole-number figures as the calibration takes it: the float sum rounded, divided
// by the count and truncated.
float wholeMean(float sum) {
    return static_cast<float>(roundHalfEven(sum) / kSampleCount);
}

// Hues below the returned figure are read 360 higher. It is the start of the widest empty arc
// between neighbouring samples, or 0 when that arc already contains 0/360.
float hueCut(std::array<float, kSampleCount> hues) {
    std::sort(hues.begin(), hues.end());
    float widest = hues.front() + 360.0f - hues.back();
    float cut = 0.0f;
    for (size_t i = 1; i < hues.size(); ++i) {
        const float gap = hues[i] - hues[i - 1];
        if (gap > widest) {
            widest = gap;
            cut = hues[i];
        }
    }
    return cut;
}

float circularMeanHue(const std::array<float, kSampleCount>& hues) {
    const float cut = hueCut(hues);
    float sum = 0.0f;
    for (const float hue : hues) {
        sum += hue < cut ? hue + 360.0f : hue;
    }
    float mean = wholeMean(sum);
    if (cut > 0.0f && mean >= 360.0f) {
        mean -= 360.0f;
    }
    return mean;
}

template <typename Columns>
std::optional<TargetPoint> scan(const LiveFrameView& frame, TargetMatcher& matcher, int fromY,
                                Columns&& columns) {
    if (!frame.hasPicture()) {
        return std::nullopt;
    }
    // A pixel the colour of the one before it has the same answer: walls, shirts and
    // gradients come in runs. One comparison of the three bytes together, which noise, where
    // no pixel repeats the one before it, gets right every time.
    std::int32_t last = -1;
    for (int y = fromY; y <= kRegionBottom; ++y) {
        std::optional<TargetPoint> found;
        columns([&](int x) {
            const Rgb colour = frame.pixel(x, y);
            const std::int32_t packed = colour.r << 16 | colour.g << 8 | colour.b;
            if (packed == last) {
                return false; // the one before did not match, or the scan would have stopped
            }
            last = packed;
            if (matcher.matches(colour.r, colour.g, colour.b)) {
                found = TargetPoint{x, y};
                return true;
            }
            return false;
        });
        if (found) {
            return found;
        }
    }
    return std::nullopt;
}

// Calls test for x from `from` to `to` inside the frame, until it says it found something.
template <typename Test>
bool eachColumn(int from, int to, Test& test) {
    for (int x = std::max(from, 0); x <= std::min(to, kFrameWidth - 1); ++x) {
        if (test(x)) {
            return true;
        }
    }
    return false;
}

} // namespace

std::optional<TargetColour> CalibrationSample(const LiveFrameView& frame) {
    if (!frame.hasPicture()) {
        return std::nullopt;
    }
    std::int32_t sumR = 0;
    std::int32_t sumG = 0;
    std::int32_t sumB = 0;
    float sumS = 0.0f;
    float sumL = 0.0f;
    std::array<float, kSampleCount> hues{};
    size_t n = 0;
    for (int y = kSquareTop + kSampleFirst; y < kSquareTop + kSampleFirst + kSampleSide; ++y) {
        for (int x = kSquareLeft + kSampleFirst; x < kSquareLeft + kSampleFirst + kSampleSide;
             ++x) {
            const Rgb c = frame.pixel(x, y);
            sumR += c.r;
            sumG += c.g;
            sumB += c.b;
            float h = 0.0f;
            float s = 0.0f;
            float l = 0.0f;
            RGBToHSL(c.r, c.g, c.b, h, s, l);
            hues[n++] = h;
            sumS += s;
            sumL += l;
        }
    }
    TargetColour colour;
    colour.Rthresh = sumR / kSampleCount;
    colour.Gthresh = sumG / kSampleCount;
    colour.Bthresh = sumB / kSampleCount;
    colour.Hthresh = circularMeanHue(hues);
    colour.Sthresh = wholeMean(sumS);
    colour.Lthresh = wholeMean(sumL);
    return colour;
}

bool Matches(const TargetColour& target, Rgb colour) {
    float h = 0.0f;
    float s = 0.0f;
    float l = 0.0f;
    RGBToHSL(colour.r, colour.g, colour.b, h, s, l);
    return reach::hue(target, h) && reach::saturationAndLightness(target, s, l);
}

std::optional<TargetPoint> FindFirstTarget(const LiveFrameView& frame, TargetMatcher& matcher) {
    return scan(frame, matcher, kRegionTop,
                [](auto&& test) { return eachColumn(kRegionLeft, kRegionRight, test); });
}

std::optional<TargetPoint> FindSecondTarget(const LiveFrameView& frame, TargetMatcher& matcher,
                                            TargetPoint first) {
    return scan(frame, matcher, first.y + kSecondTargetDrop, [first](auto&& test) {
        return eachColumn(first.x - kSecondTargetReach, first.x + kSecondTargetReach, test);
    });
}

std::optional<TargetPoint> FindThirdTarget(const LiveFrameView& frame, TargetMatcher& matcher,
                                           TargetPoint second) {
    return scan(frame, matcher, second.y, [second](auto&& test) {
        return eachColumn(kRegionLeft, second.x - kSecondTargetReach - 1, test) ||
               eachColumn(second.x + kSecondTargetReach + 1, kRegionRight, test);
    });
}

} // namespace ravelcue::training
