#include "MarkerShape.h"

#include <cmath>

#include <QPainter>
#include <QPolygonF>

namespace ravelcue::markups {

QColor colourOf(std::int32_t value) {
    const auto bits = static_cast<std::uint32_t>(value);
    return {static_cast<int>(bits & 0xFFu), static_cast<int>((bits >> 8) & 0xFFu),
            static_cast<int>((bits >> 16) & 0xFFu)};
}

bool MarkerShape::paintsNothing() const {
    if (points.empty()) {
        return true;
    }
    if (shape == ShapeEllipse) {
        return points.size() < 2 || points[0].x() == points[1].x() ||
               points[0].y() == points[1].y();
    }
    return false;
}

QRect MarkerShape::bounds() const {
    if (points.empty()) {
        return {};
    }
    double left = points[0].x();
    double right = left;
    double top = points[0].y();
    double bottom = top;
    for (const QPointF& p : points) {
        left = std::min(left, p.x());
        right = std::max(right, p.x());
        top = std::min(top, p.y());
        bottom = std::max(bottom, p.y());
    }
    const int pen = width / 2 + 2;
    return QRect(
        QPoint(static_cast<int>(std::floor(left)) - pen, static_cast<int>(std::floor(top)) - pen),
        QPoint(static_cast<int>(std::ceil(right)) + pen,
               static_cast<int>(std::ceil(bottom)) + pen));
}

void paintShape(QPainter& painter, const MarkerShape& shape) {
    if (shape.paintsNothing()) {
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing, false);
    QPen pen(colourOf(shape.colour));
    pen.setWidth(std::max(1, shape.width));
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    const std::vector<QPointF>& p = shape.points;
    const QPointF last = p.back();
    switch (shape.shape) {
    case ShapeRectangle:
        painter.drawRect(QRectF(p.front(), last).normalized());
        break;
    case ShapeEllipse:
        painter.drawEllipse(QRectF(p.front(), last).normalized());
        break;
    case ShapeFreehand:
        if (p.size() == 1) {
            painter.drawPoint(p.front());
        } else {
            painter.drawPolyline(QPolygonF(QList<QPointF>(p.begin(), p.end())));
        }
        break;
    case ShapeAngle:
        for (size_t leg = 1; leg < p.size(); ++leg) {
            painter.drawLine(p.front(), p[leg]);
        }
        break;
    default:
        painter.drawLine(p.front(), last);
        break;
    }
}

} // namespace ravelcue::markups
