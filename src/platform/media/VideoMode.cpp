#include "VideoMode.h"

#include <algorithm>

namespace ravelcue::media {

namespace {

constexpr int kRawAreaLimit = 640 * 480;

bool compressed(const VideoMode& mode) {
    return mode.pixelFormat == QLatin1String("MJPG") || mode.pixelFormat == QLatin1String("JPEG");
}

// Lower is better for this size.
int rank(const VideoMode& mode) {
    const bool large = mode.size.width() * mode.size.height() > kRawAreaLimit;
    return compressed(mode) == large ? 0 : 1;
}

} // namespace

std::vector<VideoMode> preferredModes(std::vector<VideoMode> modes) {
    std::stable_sort(modes.begin(), modes.end(), [](const VideoMode& a, const VideoMode& b) {
        const int areaA = a.size.width() * a.size.height();
        const int areaB = b.size.width() * b.size.height();
        if (areaA != areaB) {
            return areaA > areaB;
        }
        if (a.size.width() != b.size.width()) {
            return a.size.width() > b.size.width();
        }
        if (a.frameRate != b.frameRate) {
            return a.frameRate > b.frameRate;
        }
        return rank(a) < rank(b);
    });
    const auto sameMode = [](const VideoMode& a, const VideoMode& b) {
        return a.size == b.size && a.frameRate == b.frameRate;
    };
    modes.erase(std::unique(modes.begin(), modes.end(), sameMode), modes.end());
    return modes;
}

} // namespace ravelcue::media
