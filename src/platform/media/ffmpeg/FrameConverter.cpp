#include "FrameConverter.h"

#include "ImageFrames.h"

#include <QTransform>

namespace ravelcue::media::ffmpeg {

void applyColourDetails(SwsContext& scaler, const AVFrame& frame, bool toRgb) {
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
    QImage image(frame.width, frame.height, QImage::Format_RGB32);
    uint8_t* destination[4] = {image.bits(), nullptr, nullptr, nullptr};
    const int destinationStride[4] = {static_cast<int>(image.bytesPerLine()), 0, 0, 0};
    sws_scale(scaler_.get(), frame.data, frame.linesize, 0, frame.height, destination,
              destinationStride);
    if (rotation_ != 0) {
        image = image.transformed(QTransform().rotate(rotation_));
    }
    return image;
}

} // namespace ravelcue::media::ffmpeg
