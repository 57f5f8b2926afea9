#pragma once

#include "core/AppState.h"

#include <array>

#include <QImage>

namespace ravelcue {
struct AppSettings;
namespace media {
class CaptureInstance;
struct MediaInstances;
} // namespace media
} // namespace ravelcue

namespace ravelcue::markups {

// One shape on a camera's picture: the tool's number as lngShape counts them and its two points,
// in the pixels of the 640x480 live frame.
struct CameraShape {
    int lngShape = 0;
    float MarkerX1 = 0.0f;
    float MarkerY1 = 0.0f;
    float MarkerX2 = 0.0f;
    float MarkerY2 = 0.0f;
};

// The shape layer over each camera's picture, camOverlay(i), where calibration and training draw
// their square, region, rings and lines. Shapes are given in live frame pixels and land on the
// same spot of the picture whatever size the camera delivers. Black lets the picture through.
// UI thread only.
class CameraMarkers {
public:
    CameraMarkers(const AppSettings& settings, media::MediaInstances& media);

    QImage& camOverlay(int camera) { return overlays_.at(static_cast<size_t>(camera)); }

    // Paints a shape into Overlay in the marker colour and width (Draw) or in black (erasing
    // it), and hands the layer to Video. An ellipse with no width or no height paints nothing
    // and hands nothing over.
    void DrawMarker(media::CaptureInstance& Video, QImage& Overlay, bool Draw,
                    const CameraShape& shape) const;

    // Wipes a camera's layer to black and hands it to the camera.
    void clearCamOverlay(int camera);

private:
    const AppSettings& settings_;
    media::MediaInstances& media_;
    std::array<QImage, kCameraCount> overlays_;
};

} // namespace ravelcue::markups
