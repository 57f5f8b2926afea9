#pragma once

#include "markups/MarkerShape.h"

#include <QImage>

namespace ravelcue::test {

// The colour of a layer pixel as the program stores colours, 0 where the picture shows through.
inline std::int32_t layerColour(const QImage& layer, int x, int y) {
    const QRgb rgb = layer.pixel(x, y);
    return qRed(rgb) | (qGreen(rgb) << 8) | (qBlue(rgb) << 16);
}

} // namespace ravelcue::test
