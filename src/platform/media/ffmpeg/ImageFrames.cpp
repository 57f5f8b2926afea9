#include "ImageFrames.h"

namespace ravelcue::media::ffmpeg {

FramePtr frameViewOf(const QImage& image) {
    FramePtr frame = makeFrame();
    if (!frame || image.isNull()) {
        return frame;
    }
    const bool hasAlpha = image.format() == QImage::Format_ARGB32;
    // QImage's 32-bit formats are native-endian 0xAARRGGBB words, which FFmpeg calls RGB32.
    frame->format = hasAlpha ? AV_PIX_FMT_RGB32 : AV_PIX_FMT_0RGB32;
    frame->width = image.width();
    frame->height = image.height();
    frame->data[0] = const_cast<uint8_t*>(image.constBits());
    frame->linesize[0] = static_cast<int>(image.bytesPerLine());
    return frame;
}

AVPixelFormat plainFormat(AVPixelFormat format, AVColorRange range, bool& fullRange) {
    fullRange = range == AVCOL_RANGE_JPEG;
    switch (format) {
    case AV_PIX_FMT_YUVJ420P:
        fullRange = true;
        return AV_PIX_FMT_YUV420P;
    case AV_PIX_FMT_YUVJ422P:
        fullRange = true;
        return AV_PIX_FMT_YUV422P;
    case AV_PIX_FMT_YUVJ444P:
        fullRange = true;
        return AV_PIX_FMT_YUV444P;
    case AV_PIX_FMT_YUVJ440P:
        fullRange = true;
        return AV_PIX_FMT_YUV440P;
    case AV_PIX_FMT_YUVJ411P:
        fullRange = true;
        return AV_PIX_FMT_YUV411P;
    default:
        return format;
    }
}

SwsContext* converterFor(SwsPtr& cache, int sourceWidth, int sourceHeight, AVPixelFormat source,
                         AVColorRange sourceRange, int width, int height, AVPixelFormat destination,
                         AVColorRange destinationRange, int flags) {
    bool sourceFull = false;
    bool destinationFull = false;
    source = plainFormat(source, sourceRange, sourceFull);
    destination = plainFormat(destination, destinationRange, destinationFull);
    SwsContext* context =
        sws_getCachedContext(cache.release(), sourceWidth, sourceHeight, source, width, height,
                             destination, flags, nullptr, nullptr, nullptr);
    cache.reset(context);
    if (context == nullptr) {
        return nullptr;
    }
    // RGB is always full range; the flags matter only on the YUV side.
    const int* coefficients = sws_getCoefficients(SWS_CS_DEFAULT);
    sws_setColorspaceDetails(context, coefficients, sourceFull ? 1 : 0, coefficients,
                             destinationFull ? 1 : 0, 0, 1 << 16, 1 << 16);
    return context;
}

QImage imageOf(const AVFrame& frame, SwsPtr& cache) {
    if (frame.width <= 0 || frame.height <= 0) {
        return {};
    }
    SwsContext* context =
        converterFor(cache, frame.width, frame.height, static_cast<AVPixelFormat>(frame.format),
                     frame.color_range, frame.width, frame.height, AV_PIX_FMT_0RGB32,
                     AVCOL_RANGE_JPEG, SWS_BILINEAR);
    if (context == nullptr) {
        return {};
    }
    QImage image(frame.width, frame.height, QImage::Format_RGB32);
    uint8_t* destination[4] = {image.bits(), nullptr, nullptr, nullptr};
    const int destinationStride[4] = {static_cast<int>(image.bytesPerLine()), 0, 0, 0};
    sws_scale(context, frame.data, frame.linesize, 0, frame.height, destination, destinationStride);
    return image;
}

} // namespace ravelcue::media::ffmpeg
