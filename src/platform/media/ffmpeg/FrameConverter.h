#pragma once

#include "FfmpegPtr.h"

#include <array>

#include <QImage>

namespace ravelcue::media::ffmpeg {

// Turns decoded pictures into RGB32 images, honouring the frame's colour matrix and range and
// turning the picture upright. Keeps its scaler between calls; one thread at a time.
class FrameConverter {
public:
    explicit FrameConverter(int rotationDegrees = 0)
        : rotation_(rotationDegrees) {}

    QImage toImage(const AVFrame& frame);

private:
    QImage reusableImage(QSize size);

    SwsPtr scaler_;
    int rotation_ = 0;
    // Pictures handed out earlier, written again once nobody else holds them: a fresh 8 MB
    // picture a frame costs its page faults every time.
    std::array<QImage, 4> pool_;
};

// An RGB32 image whose rows have room to spare at their ends: the scaler's vector code writes
// whole blocks of pixels and runs past the last pixel of a row whose width is not a multiple of
// the block.
QImage scalerSafeImage(QSize size);

// Tells the scaler which colour matrix and range the frame uses, and that RGB is full range.
void applyColourDetails(SwsContext& scaler, const AVFrame& frame, bool toRgb);

} // namespace ravelcue::media::ffmpeg
