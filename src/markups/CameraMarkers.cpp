#include "CameraMarkers.h"

#include "MarkerShape.h"
#include "core/AppSettings.h"
#include "platform/media/LiveFrame.h"
#include "platform/media/MediaInstances.h"
#include "platform/media/VideoView.h"

#include <cmath>

#include <QColor>
#include <QPainter>
#include <QPen>

namespace ravelcue::markups {

namespace {

constexpr QSize kFrameSize(media::kLiveFrameWidth, media::kLiveFrameHeight);

// The layer lies on the picture pixel for pixel, so it takes the size the camera delivers; the
// live frame a scan reads is that picture stretched to 640x480.
QSize pictureSizeOf(const media::CaptureInstance& video) {
    const QSize size = video.view() != nullptr ? video.view()->pictureSize() : QSize();
    return size.isEmpty() ? kFrameSize : size;
}

QImage blackLayer(QSize size) {
    QImage layer(size, QImage::Format_RGB32);
    layer.fill(Qt::black);
    return layer;
}

} // namespace

CameraMarkers::CameraMarkers(const AppSettings& settings, media::MediaInstances& media)
    : settings_(settings)
    , media_(media) {
    for (QImage& layer : overlays_) {
        layer = blackLayer(kFrameSize);
    }
}

void CameraMarkers::DrawMarker(media::CaptureInstance& Video, QImage& Overlay, bool Draw,
                               const CameraShape& shape) const {
    const QSize picture = pictureSizeOf(Video);
    if (Overlay.size() != picture) {
        Overlay = blackLayer(picture);
    }
    const QPointF p1(shape.MarkerX1, shape.MarkerY1);
    const QPointF p2(shape.MarkerX2, shape.MarkerY2);
    {
        QPainter painter(&Overlay);
        painter.scale(double(picture.width()) / kFrameSize.width(),
                      double(picture.height()) / kFrameSize.height());
        QPen pen(Draw ? colourOf(settings_.MarkerColor) : QColor(Qt::black));
        pen.setWidth(settings_.MarkerWidth);
        painter.setPen(pen);
        painter.setBrush(Qt::NoBrush);
        switch (shape.lngShape) {
        case ShapeLine:
        case ShapeVline:
        case ShapeHline:
            painter.drawLine(p1, p2);
            break;
        case ShapeRectangle:
            painter.drawRect(QRectF(p1, p2).normalized());
            break;
        case ShapeEllipse: {
            const double rx = std::fabs(p1.x() - p2.x()) / 2;
            const double ry = std::fabs(p1.y() - p2.y()) / 2;
            if (rx == 0 || ry == 0) {
                return;
            }
            painter.drawEllipse((p1 + p2) / 2, rx, ry);
            break;
        }
        default:
            // Freehand, angle and text are drawn on players only.
            break;
        }
    }
    Video.SetBitmapOverlay(Overlay);
}

void CameraMarkers::clearCamOverlay(int camera) {
    media::CaptureInstance& video = media_.cam(camera);
    QImage& layer = camOverlay(camera);
    layer = blackLayer(pictureSizeOf(video));
    video.SetBitmapOverlay(layer);
}

} // namespace ravelcue::markups
