#include "TargetSearch.h"

#include "ColourModel.h"
#include "core/Rounding.h"

#include <algorithm>
#include <array>

namespace ravelcue::training {

namespace {

constexpr int kSampleFirst = 2; // the sample starts this far inside the square
constexpr int kSampleSide = 7;
constexpr int kSampleCount = kSampleSide * kSampleSide;
constexpr float kHueRange = 10.0f;
constexpr float kSaturationRange = 30.0f;
constexpr float kLightnessRange = 20.0f;

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

// Both limits tested without a branch between them.
bool within(float value, float centre, float range) {
    return (value >= centre - range) & (value <= centre + range);
}

template <typename Columns>
std::optional<TargetPoint> scan(const LiveFrameView& frame, const TargetColour& target, int fromY,
                                Columns&& columns) {
    if (!frame.hasPicture()) {
        return std::nullopt;
    }
    // A pixel the colour of the one before it has the same answer: walls, shirts and
    // gradients come in runs, and the conversion is the cost of a scan.
    Rgb last{-1, -1, -1};
    for (int y = fromY; y <= kRegionBottom; ++y) {
        std::optional<TargetPoint> found;
        columns([&](int x) {
            const Rgb colour = frame.pixel(x, y);
            if (colour.r == last.r && colour.g == last.g && colour.b == last.b) {
                return false; // the one before did not match, or the scan would have stopped
            }
            last = colour;
            if (Matches(target, colour)) {
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
    // RGBToHSL step by step, stopping at the first figure out of reach: most pixels of a
    // picture fail on their hue, before the saturation's division.
    const float r = hsl::unit(colour.r);
    const float g = hsl::unit(colour.g);
    const float b = hsl::unit(colour.b);
    const float max = Max3(r, g, b);
    const float min = Min3(r, g, b);
    const bool grey = max == min;
    const float h = grey ? 0.0f : hsl::hue(r, g, b, max, min);
    // Around the circle: a hue near 0 may match a target near 360 and the other way round.
    if (!within(h, target.Hthresh, kHueRange) && !within(h, target.Hthresh - 360.0f, kHueRange) &&
        !within(h, target.Hthresh + 360.0f, kHueRange)) {
        return false;
    }
    const float l = hsl::lightness(max, min);
    const float s = grey ? 0.0f : hsl::saturation(max, min, l);
    return within(s, target.Sthresh, kSaturationRange) &&
           within(l, target.Lthresh, kLightnessRange);
}

std::optional<TargetPoint> FindFirstTarget(const LiveFrameView& frame, const TargetColour& target) {
    return scan(frame, target, kRegionTop,
                [](auto&& test) { return eachColumn(kRegionLeft, kRegionRight, test); });
}

std::optional<TargetPoint> FindSecondTarget(const LiveFrameView& frame, const TargetColour& target,
                                            TargetPoint first) {
    return scan(frame, target, first.y + kSecondTargetDrop, [first](auto&& test) {
        return eachColumn(first.x - kSecondTargetReach, first.x + kSecondTargetReach, test);
    });
}

std::optional<TargetPoint> FindThirdTarget(const LiveFrameView& frame, const TargetColour& target,
                                           TargetPoint second) {
    return scan(frame, target, second.y, [second](auto&& test) {
        return eachColumn(kRegionLeft, second.x - kSecondTargetReach - 1, test) ||
               eachColumn(second.x + kSecondTargetReach + 1, kRegionRight, test);
    });
}

} // namespace ravelcue::training
