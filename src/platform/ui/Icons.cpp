#include "Icons.h"

#include <functional>
#include <map>

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QPolygonF>

namespace ravelcue::ui {

namespace {

constexpr int kSize = 32;
using Drawing = std::function<void(QPainter&)>;

QPolygonF triangle(qreal left, qreal right, bool pointsRight) {
    if (pointsRight) {
        return QPolygonF({QPointF(left, 7), QPointF(right, 16), QPointF(left, 25)});
    }
    return QPolygonF({QPointF(right, 7), QPointF(left, 16), QPointF(right, 25)});
}

const std::map<QString, Drawing>& drawings() {
    static const std::map<QString, Drawing> all{
        {"Rewind",
         [](QPainter& p) {
             p.drawRect(QRectF(6, 7, 3, 18));
             p.drawPolygon(triangle(10, 18, false));
             p.drawPolygon(triangle(18, 26, false));
         }},
        {"StepBack",
         [](QPainter& p) {
             p.drawPolygon(triangle(9, 21, false));
             p.drawRect(QRectF(22, 7, 3, 18));
         }},
        {"Play", [](QPainter& p) { p.drawPolygon(triangle(9, 25, true)); }},
        {"Pause",
         [](QPainter& p) {
             p.drawRect(QRectF(9, 7, 5, 18));
             p.drawRect(QRectF(18, 7, 5, 18));
         }},
        {"StepForward",
         [](QPainter& p) {
             p.drawRect(QRectF(7, 7, 3, 18));
             p.drawPolygon(triangle(11, 23, true));
         }},
        {"Stop", [](QPainter& p) { p.drawRect(QRectF(8, 8, 16, 16)); }},
    };
    return all;
}

const std::map<QString, Drawing>& outlines() {
    static const std::map<QString, Drawing> all{
        {"Line", [](QPainter& p) { p.drawLine(QPointF(6, 26), QPointF(26, 6)); }},
        {"Vline", [](QPainter& p) { p.drawLine(QPointF(16, 5), QPointF(16, 27)); }},
        {"Hline", [](QPainter& p) { p.drawLine(QPointF(5, 16), QPointF(27, 16)); }},
        {"Freehand",
         [](QPainter& p) {
             QPainterPath path(QPointF(5, 22));
             path.cubicTo(QPointF(10, 4), QPointF(16, 30), QPointF(20, 14));
             path.cubicTo(QPointF(22, 8), QPointF(26, 10), QPointF(27, 18));
             p.drawPath(path);
         }},
        {"Angle",
         [](QPainter& p) {
             p.drawLine(QPointF(6, 26), QPointF(27, 26));
             p.drawLine(QPointF(6, 26), QPointF(22, 6));
             p.drawArc(QRectF(-4, 16, 20, 20), 0, 52 * 16);
         }},
        {"Ellipse", [](QPainter& p) { p.drawEllipse(QRectF(4, 8, 24, 16)); }},
        {"Rectangle", [](QPainter& p) { p.drawRect(QRectF(5, 8, 22, 16)); }},
        {"Text",
         [](QPainter& p) {
             QFont font(QStringLiteral("Liberation Serif"));
             font.setPixelSize(24);
             font.setBold(true);
             p.setFont(font);
             p.drawText(QRectF(0, 0, kSize, kSize), Qt::AlignCenter, QStringLiteral("T"));
         }},
        {"Color",
         [](QPainter& p) {
             const QColor colours[] = {Qt::red, Qt::green, Qt::blue, Qt::yellow};
             for (int i = 0; i < 4; ++i) {
                 p.fillRect(QRectF(5 + (i % 2) * 11, 5 + (i / 2) * 11, 11, 11), colours[i]);
             }
             p.drawRect(QRectF(5, 5, 22, 22));
         }},
        {"Erase",
         [](QPainter& p) {
             p.save();
             p.translate(16, 16);
             p.rotate(-35);
             p.setBrush(QColor(240, 160, 170));
             p.drawRect(QRectF(-11, -6, 22, 12));
             p.setBrush(QColor(120, 130, 200));
             p.drawRect(QRectF(-11, -6, 8, 12));
             p.restore();
         }},
    };
    return all;
}

} // namespace

QIcon toolbarIcon(const QString& key) {
    QPixmap pixmap(kSize, kSize);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor ink(40, 40, 40);
    if (const auto found = drawings().find(key); found != drawings().end()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(ink);
        found->second(painter);
    } else if (const auto outline = outlines().find(key); outline != outlines().end()) {
        painter.setPen(QPen(ink, 2.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
        outline->second(painter);
    } else {
        return {};
    }
    painter.end();
    return QIcon(pixmap);
}

} // namespace ravelcue::ui
