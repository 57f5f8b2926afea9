#pragma once

#include "training/ColourModel.h"
#include "training/TargetMatcher.h"
#include "training/TargetSearch.h"

#include <vector>

namespace ravelcue::training::test {

// A live frame filled with one colour, with pixels painted by their top-left coordinates.
class TestFrame {
public:
    explicit TestFrame(Rgb fill = {40, 40, 40})
        : bytes_(kFrameBytes) {
        for (int y = 0; y < kFrameHeight; ++y) {
            for (int x = 0; x < kFrameWidth; ++x) {
                set(x, y, fill);
            }
        }
    }
    void set(int x, int y, Rgb c) {
        unsigned char* p =
            &bytes_[static_cast<size_t>((kFrameHeight - 1 - y) * kFrameStride + x * 3)];
        p[0] = static_cast<unsigned char>(c.b);
        p[1] = static_cast<unsigned char>(c.g);
        p[2] = static_cast<unsigned char>(c.r);
    }
    LiveFrameView view() const { return LiveFrameView(bytes_); }

private:
    std::vector<unsigned char> bytes_;
};

// The target a sample of one colour gives.
inline TargetColour targetOf(Rgb c) {
    TestFrame frame(c);
    return *CalibrationSample(frame.view());
}

inline constexpr Rgb kGreenTarget{70, 210, 30};

} // namespace ravelcue::training::test
