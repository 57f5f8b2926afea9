#pragma once

#include "FfmpegPtr.h"

#include <vector>

#include <QImage>
#include <QRect>

namespace ravelcue::media::ffmpeg {

// Burns a composed overlay into decoded pictures in their own pixel format. Only the areas the
// overlay covers are turned into RGB, composed and turned back, so the rest of each picture
// passes through untouched and a few markers cost next to nothing per frame. One thread.
class OverlayBurner {
public:
    // composed: the whole overlay at picture size, premultiplied ARGB (OverlayLayer::composed).
    explicit OverlayBurner(QImage composed);

    bool empty() const { return areas_.empty(); }
    // Whether frames of this format can be burnt in place; otherwise burn an RGB copy.
    static bool burnsInPlace(AVPixelFormat format);
    // frame: writable, of the overlay's size, a format burnsInPlace accepts.
    void burnInto(AVFrame& frame);
    // The same on an RGB32 picture of the overlay's size.
    void burnInto(QImage& picture) const;

private:
    struct Band {
        QRect area; // aligned to the format's chroma grid
        SwsPtr toRgb;
        SwsPtr fromRgb;
        QImage rgb;
    };
    void prepareBands(const AVFrame& frame);

    QImage composed_;
    std::vector<QRect> areas_;
    std::vector<Band> bands_;
    int bandFormat_ = -1;
};

// The parts of a premultiplied ARGB image that are not fully transparent, as a few rectangles
// of whole rows (rows closer than a handful apart share one rectangle).
std::vector<QRect> coveredAreas(const QImage& composed);

} // namespace ravelcue::media::ffmpeg
