#pragma once

#include <vector>

#include <QSize>
#include <QString>

namespace ravelcue::media {

// One way a camera can deliver pictures: a size at a rate, in a pixel format ("MJPG", "YUYV",
// "RGB" for the demo cameras).
struct VideoMode {
    QSize size;
    double frameRate = 0;
    QString pixelFormat;

    bool operator==(const VideoMode&) const = default;
};

// One mode for each size and rate, largest first, faster first. Where a size and rate come in
// several formats, sizes above 640x480 take MJPG (a camera's USB link rarely carries them raw at
// full rate) and smaller ones the uncompressed format, which costs no decoding.
std::vector<VideoMode> preferredModes(std::vector<VideoMode> modes);

} // namespace ravelcue::media
