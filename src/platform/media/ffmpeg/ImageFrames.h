#pragma once

#include "FfmpegPtr.h"

#include <QImage>

namespace ravelcue::media::ffmpeg {

// An AVFrame that looks at the pixels of a 32-bit QImage without copying them: valid while the
// image lives and stays unchanged. The frame owns no buffer.
FramePtr frameViewOf(const QImage& image);

// The pixel format with the deprecated full-range YUV formats (yuvj*) named by their plain twin,
// and whether the frame's samples use the full 0..255 range.
AVPixelFormat plainFormat(AVPixelFormat format, AVColorRange range, bool& fullRange);

// A converter between two frames' formats and sizes that also honours their ranges, reusing
// cache when it fits. Null when the formats cannot be converted.
SwsContext* converterFor(SwsPtr& cache, int sourceWidth, int sourceHeight, AVPixelFormat source,
                         AVColorRange sourceRange, int width, int height, AVPixelFormat destination,
                         AVColorRange destinationRange, int flags);

// Any decoded frame as an RGB32 image of the same size; cache keeps the converter between calls.
// A null image when the frame's format cannot be converted.
QImage imageOf(const AVFrame& frame, SwsPtr& cache);

} // namespace ravelcue::media::ffmpeg
