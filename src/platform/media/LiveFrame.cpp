#include "LiveFrame.h"

namespace ravelcue::media {

QByteArray liveFrameBytes(const QImage& picture) {
    if (picture.isNull()) {
        return {};
    }
    QImage scaled = picture.size() == QSize(kLiveFrameWidth, kLiveFrameHeight)
                        ? picture
                        : picture.scaled(kLiveFrameWidth, kLiveFrameHeight, Qt::IgnoreAspectRatio,
                                         Qt::SmoothTransformation);
    if (scaled.format() != QImage::Format_RGB32 && scaled.format() != QImage::Format_ARGB32) {
        scaled = scaled.convertToFormat(QImage::Format_RGB32);
    }
    QByteArray bytes(kLiveFrameStride * kLiveFrameHeight, Qt::Uninitialized);
    auto* out = reinterpret_cast<unsigned char*>(bytes.data());
    for (int y = 0; y < kLiveFrameHeight; ++y) {
        const auto* in = reinterpret_cast<const QRgb*>(scaled.constScanLine(y));
        unsigned char* row = out + (kLiveFrameHeight - 1 - y) * kLiveFrameStride;
        for (int x = 0; x < kLiveFrameWidth; ++x) {
            row[x * 3] = static_cast<unsigned char>(qBlue(in[x]));
            row[x * 3 + 1] = static_cast<unsigned char>(qGreen(in[x]));
            row[x * 3 + 2] = static_cast<unsigned char>(qRed(in[x]));
        }
    }
    return bytes;
}

} // namespace ravelcue::media
