#pragma once

#include <cstdint>

#include <QImage>
#include <QPoint>
#include <QSize>

namespace ravelcue::media {

inline constexpr int kDemoCameraCount = 4;

// Demo Camera 1: a forearm seen from behind, with a target at the elbow, one at the wrist and a
// third on a pole to the side. The wrist swings slowly from one side to the other and back, so
// training hears "left", "good" and "right" (and "back", "good", "forward" from the side) in
// turn. The elbow target covers the calibration square 300..310 x 200..210.
inline constexpr QRgb kDemoTargetColour = 0xFF1ED246; // saturated green, used nowhere else
inline constexpr int kDemoArmCycleMs = 24000;
inline constexpr int kDemoTargetRadius = 9;

// Target centres in the pixels of a 640x480 picture.
struct DemoArmPose {
    QPoint upperTarget;
    QPoint lowerTarget;
    QPoint sideTarget;
};
DemoArmPose demoArmPose(std::int64_t clockMs);

// The pictures of one demo camera (1 to 4) at one size. The scene is a pure function of the
// capture clock; the frame counter and the clock are written into every picture (see
// DemoStamp). Not thread-safe: one per source.
class DemoScene {
public:
    DemoScene(int demoNumber, QSize size);

    QSize size() const { return size_; }
    // An RGB32 picture.
    QImage render(std::uint32_t frameCounter, std::int64_t clockMs);

private:
    void drawBackground();
    void drawArm(QImage& frame, std::int64_t clockMs) const;
    void drawTable(QImage& frame, std::int64_t clockMs) const;
    void drawBars(QImage& frame, std::int64_t clockMs) const;
    void drawPattern(QImage& frame, std::int64_t clockMs) const;
    void drawCaption(QImage& frame, std::uint32_t frameCounter, std::int64_t clockMs) const;

    int demoNumber_;
    QSize size_;
    double scaleX_;
    double scaleY_;
    QImage background_;
    QImage pattern_; // camera 4: a tile twice the picture's size, shown at a moving offset
};

} // namespace ravelcue::media
