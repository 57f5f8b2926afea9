#pragma once

#include <cstdint>

#include <QImage>

namespace ravelcue::media {

// What a demo camera writes into every frame: its frame counter and the capture clock in
// milliseconds. They stand twice: as text for people, and as a band of large black and white
// blocks across the top of the picture that survives lossy compression, for programs.
struct DemoStamp {
    bool valid = false;
    std::uint32_t frameCounter = 0; // 24 bits are kept
    std::uint32_t clockMs = 0;

    bool operator==(const DemoStamp&) const = default;
};

// Height of the block band at the top of a picture of this size.
int demoStampBandHeight(QSize pictureSize);
// Draws the band (and nothing else) into an RGB32 picture.
void drawDemoStampBand(QImage& picture, std::uint32_t frameCounter, std::uint32_t clockMs);
// Reads the band back from a decoded picture of any format; valid only when its check byte
// matches. Thread-safe.
DemoStamp readDemoStamp(const QImage& picture);

} // namespace ravelcue::media
