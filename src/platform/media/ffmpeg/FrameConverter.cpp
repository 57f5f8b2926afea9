#include "FrameConverter.h"

#include "ImageFrames.h"

extern "C" {
#include <libavutil/mem.h>
#include <libavutil/pixdesc.h>
}

#include <QTransform>

namespace ravelcue::media::ffmpeg {

void applyColourDetails(SwsContext& scaler, const AVFrame& frame, bool toRgb) {
    const AVPixFmtDescriptor* desc = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    if (desc == nullptr || (desc->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) ||
        desc->nb_components < 3) {
        return; // no colour matrix between RGB, palette or grey pictures and RGB
    }
    int* inverseTable = nullptr;
    int* table = nullptr;
    int sourceRange = 0;
    int destinationRange = 0;
    int brightness = 0;
    int contrast = 0;
    int saturation = 0;
    if (sws_getColorspaceDetails(&scaler, &inverseTable, &sourceRange, &table, &destinationRange,
                                 &brightness, &contrast, &saturation) < 0) {
        return; // the scaler treats this pair of formats as RGB to RGB
    }
    bool fullRange = false;
    plainFormat(static_cast<AVPixelFormat>(frame.format), frame.color_range, fullRange);
    const int* coefficients = sws_getCoefficients(frame.colorspace);
    if (toRgb) {
        sws_setColorspaceDetails(&scaler, coefficients, fullRange ? 1 : 0, table, 1, brightness,
                                 contrast, saturation);
    } else {
        sws_setColorspaceDetails(&scaler, inverseTable, 1, coefficients, fullRange ? 1 : 0,
                                 brightness, contrast, saturation);
    }
}

QImage scalerSafeImage(QSize size) {
    constexpr int kSlack = 64; // bytes: 16 pixels
    const int stride = (size.width() * 4 + kSlack - 1) / kSlack * kSlack + kSlack;
    auto* data =
        static_cast<uchar*>(av_malloc(static_cast<size_t>(stride) * size.height() + kSlack));
    if (data == nullptr) {
        return {};
    }
    return QImage(data, size.width(), size.height(), stride, QImage::Format_RGB32, av_free, data);
}

QImage FrameConverter::reusableImage(QSize size) {
    for (QImage& image : pool_) {
        if (!image.isNull() && image.size() == size && image.isDetached()) {
            return image;
        }
    }
    for (QImage& image : pool_) {
        if (image.isNull() || (image.size() != size && image.isDetached())) {
            image = scalerSafeImage(size);
            return image;
        }
    }
    return scalerSafeImage(size); // all still on show somewhere
}

QImage FrameConverter::toImage(const AVFrame& frame) {
    if (frame.width <= 0 || frame.height <= 0) {
        return {};
    }
    bool fullRange = false;
    scaler_.reset(sws_getCachedContext(
        scaler_.release(), frame.width, frame.height,
        plainFormat(static_cast<AVPixelFormat>(frame.format), frame.color_range, fullRange),
        frame.width, frame.height, AV_PIX_FMT_RGB32, SWS_BICUBIC, nullptr, nullptr, nullptr));
    if (!scaler_) {
        return {};
    }
    applyColourDetails(*scaler_, frame, true);
    QImage image = reusableImage(QSize(frame.width, frame.height));
    if (image.isNull()) {
        return {};
    }
    // Written through the shared pointer on purpose: the pool's reference is the only other one,
    // and bits() would copy the picture to detach from it.
    uint8_t* destination[4] = {const_cast<uchar*>(image.constBits()), nullptr, nullptr, nullptr};
    const int destinationStride[4] = {static_cast<int>(image.bytesPerLine()), 0, 0, 0};
    sws_scale(scaler_.get(), frame.data, frame.linesize, 0, frame.height, destination,
              destinationStride);
    if (rotation_ != 0) {
        image = image.transformed(QTransform().rotate(rotation_));
    }
    return image;
}

} // namespace ravelcue::media::ffmpeg
