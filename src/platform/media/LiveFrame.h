#pragma once

#include <QByteArray>
#include <QImage>

namespace ravelcue::media {

// The live frame training reads: 640 by 480, three bytes a pixel (blue, green, red), 1920 bytes a
// row, bottom row first.
inline constexpr int kLiveFrameWidth = 640;
inline constexpr int kLiveFrameHeight = 480;
inline constexpr int kLiveFrameStride = kLiveFrameWidth * 3;

// The picture in that layout, stretched to 640x480 when it has another size (a demo scene and a
// calibration square scale the same way). Empty for a null picture. Thread-safe.
QByteArray liveFrameBytes(const QImage& picture);

} // namespace ravelcue::media
