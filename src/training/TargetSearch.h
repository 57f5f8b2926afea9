#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace ravelcue::training {

// A live frame as the camera hands it over: 640 by 480, three bytes a pixel (blue, green, red),
// 1920 bytes a row, the bottom row first. A frame with fewer bytes holds no picture.
inline constexpr int kFrameWidth = 640;
inline constexpr int kFrameHeight = 480;
inline constexpr int kFrameStride = kFrameWidth * 3;
inline constexpr std::size_t kFrameBytes = std::size_t{kFrameStride} * kFrameHeight;

struct Rgb {
    int r = 0;
    int g = 0;
    int b = 0;
};

class LiveFrameView {
public:
    explicit LiveFrameView(std::span<const unsigned char> bytes)
        : bytes_(bytes.size() >= kFrameBytes ? bytes.data() : nullptr) {}

    bool hasPicture() const { return bytes_ != nullptr; }
    // The pixel at column x and row y, both from the top left corner; only with a picture.
    Rgb pixel(int x, int y) const {
        const unsigned char* p = bytes_ + (kFrameHeight - 1 - y) * kFrameStride + x * 3;
        return {p[2], p[1], p[0]};
    }

private:
    const unsigned char* bytes_;
};

// The colour targets are sought by, all figures whole numbers. Nothing is calibrated while red,
// green and blue are all 0, so a pure black sample counts as none.
struct TargetColour {
    float Hthresh = 0.0f;
    float Sthresh = 0.0f;
    float Lthresh = 0.0f;
    std::int32_t Rthresh = 0;
    std::int32_t Gthresh = 0;
    std::int32_t Bthresh = 0;

    bool calibrated() const { return Rthresh != 0 || Gthresh != 0 || Bthresh != 0; }
    bool operator==(const TargetColour&) const = default;
};

// The small square the user holds the target's colour into, in frame pixels. Its middle is not
// the frame's middle.
inline constexpr int kSquareLeft = 300;
inline constexpr int kSquareTop = 200;
inline constexpr int kSquareRight = 310;
inline constexpr int kSquareBottom = 210;

// The mean colour of the 7 x 7 pixels inside the square, one pixel and more from its edge lines.
// Red, green and blue are the truncated means; saturation and lightness the rounded sums divided
// by 49, truncated. Hue is averaged around the circle: the samples are read on the shortest arc
// that holds them all, so reds on both sides of 0 average to a red, and samples that don't
// cross 0 give the plain mean. Nothing without a picture.
std::optional<TargetColour> CalibrationSample(const LiveFrameView& frame);

// Whether a colour is the target's: hue within 10 degrees of it around the circle, saturation
// within 30 and lightness within 20, the limits included. The scans ask a TargetMatcher, which
// answers the same.
bool Matches(const TargetColour& target, Rgb colour);

struct TargetPoint {
    int x = 0;
    int y = 0;
    bool operator==(const TargetPoint&) const = default;
};

// The search region of a run, in frame pixels.
inline constexpr int kRegionLeft = 50;
inline constexpr int kRegionTop = 50;
inline constexpr int kRegionRight = 590;
inline constexpr int kRegionBottom = 430;
// How far under the first target the second must be, and how far to the side it may be.
inline constexpr int kSecondTargetDrop = 75;
inline constexpr int kSecondTargetReach = 100;

class TargetMatcher;

// Each scan goes row by row from the top, left to right within a row, and stops at the first
// matching pixel. Columns left of 0 or right of 639 are skipped.
// The first target: anywhere in the region.
std::optional<TargetPoint> FindFirstTarget(const LiveFrameView& frame, TargetMatcher& matcher);
// The second: at least 75 rows under the first and at most 100 columns to either side of it, down
// to the region's last row.
std::optional<TargetPoint> FindSecondTarget(const LiveFrameView& frame, TargetMatcher& matcher,
                                            TargetPoint first);
// The third (side training): from the second's row down, across the region but not within 100
// columns of the second.
std::optional<TargetPoint> FindThirdTarget(const LiveFrameView& frame, TargetMatcher& matcher,
                                           TargetPoint second);

} // namespace ravelcue::training
