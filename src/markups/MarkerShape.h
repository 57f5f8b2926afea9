#pragma once

#include <cstdint>
#include <vector>

#include <QColor>
#include <QPointF>
#include <QRect>

class QPainter;

namespace ravelcue::markups {

// The drawing tool by number, as lngShape holds it.
enum Shape : int {
    ShapeLine = 0,
    ShapeVline = 1,
    ShapeHline = 2,
    ShapeRectangle = 3,
    ShapeEllipse = 4,
    ShapeFreehand = 5,
    ShapeAngle = 6,
    ShapeText = 7,
    ShapeNone = 99,
};

// A colour as the program stores it: red in the low byte, blue in the third.
QColor colourOf(std::int32_t value);

inline constexpr std::int32_t kGridColour = 12632256; // RGB(192, 192, 192)
inline constexpr std::int32_t kReadingColour = 65535; // yellow
inline constexpr std::int32_t kWhite = 16777215;

// One shape of the shape layer, in picture pixels. Lines, rectangles and ellipses use the first
// two points; a freehand stroke is the polyline through all of them; an angle is the two legs
// from its first point (the vertex) to the second and to the third.
struct MarkerShape {
    int shape = ShapeLine;
    std::vector<QPointF> points;
    std::int32_t colour = 65280;
    int width = 2;

    // An ellipse with no height or no width has nothing to paint.
    bool paintsNothing() const;
    // The pixels the shape may touch, pen included.
    QRect bounds() const;
};

// Paints the shape in its colour and width, without smoothing, so that every pixel it touches is
// its colour and black stays free for the picture.
void paintShape(QPainter& painter, const MarkerShape& shape);

} // namespace ravelcue::markups
