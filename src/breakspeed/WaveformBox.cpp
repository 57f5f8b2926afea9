#include "WaveformBox.h"

#include <algorithm>

#include <QCursor>
#include <QMouseEvent>
#include <QPainter>

namespace ravelcue::breakspeed {

WaveformBox::WaveformBox(QWidget* parent, const QString& name, const QString& toolTip,
                         const QString& shapeName)
    : QFrame(parent) {
    setObjectName(name);
    setToolTip(toolTip);
    setFrameStyle(QFrame::Box | QFrame::Plain);
    shape_ = new QFrame(this);
    shape_->setObjectName(shapeName);
    static_cast<QFrame*>(shape_)->setFrameStyle(QFrame::Box | QFrame::Plain);
    shape_->setAttribute(Qt::WA_TransparentForMouseEvents);
    shape_->hide();
    Cls();
}

void WaveformBox::Cls() {
    const QSize area = contentsRect().size().expandedTo(QSize(1, 1));
    if (canvas_.size() != area) {
        canvas_ = QImage(area, QImage::Format_RGB32);
    }
    canvas_.fill(kBackground);
    if (scale_.width == 0) {
        scale_ = {static_cast<double>(area.width()), static_cast<double>(area.height())};
    }
    update();
}

void WaveformBox::DrawWaveform(std::span<const std::int16_t> samples, int scaleHeight, int start,
                               int end) {
    Cls();
    const WaveformPlot plot =
        PlotWaveform(samples, start, end, scaleHeight, canvas_.width(), canvas_.height());
    if (!plot.scale) {
        return; // an empty stretch or nothing above zero: the box stays blank, its scale as was
    }
    scale_ = *plot.scale;
    QPainter painter(&canvas_);
    painter.setPen(QColor(kForeground));
    for (int x = 0; x < static_cast<int>(plot.columns.size()); ++x) {
        if (const auto& span = plot.columns[static_cast<size_t>(x)]) {
            const PixelRows rows = RowsOf(*span, canvas_.height());
            painter.drawLine(x, rows.first, x, rows.last);
        }
    }
}

void WaveformBox::drawFullHeightLine(double x, QRgb colour) {
    const int column = columnAt(x);
    if (column < 0 || column >= canvas_.width()) {
        return;
    }
    QPainter painter(&canvas_);
    painter.setPen(QColor(colour));
    painter.drawLine(column, 0, column, canvas_.height() - 1);
    update();
}

int WaveformBox::columnAt(double x) const {
    return ColumnAtX(x, canvas_.width(), scale_);
}

double WaveformBox::xAt(double pixel) const {
    return XAtPixel(pixel, canvas_.width(), scale_);
}

void WaveformBox::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(this);
        painter.drawImage(contentsRect().topLeft(), canvas_);
    }
    QFrame::paintEvent(event); // the border
}

void WaveformBox::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    // The scale stays with the box, so what it shows stretches with it.
    const QSize area = contentsRect().size().expandedTo(QSize(1, 1));
    if (canvas_.size() != area) {
        canvas_ = canvas_.scaled(area, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    }
}

QPointF WaveformBox::insideArea(const QPointF& position) const {
    const QRectF area = contentsRect();
    return {std::clamp(position.x() - area.left(), 0.0, area.width() - 1),
            std::clamp(position.y() - area.top(), 0.0, area.height() - 1)};
}

void WaveformBox::keepCursorInside(const QPointF& position) {
    const QRect area = contentsRect();
    const QPoint local = position.toPoint();
    if (!area.contains(local)) {
        const QPoint held(std::clamp(local.x(), area.left(), area.right()),
                          std::clamp(local.y(), area.top(), area.bottom()));
        QCursor::setPos(mapToGlobal(held));
    }
}

void WaveformBox::placeShape() {
    const int left = columnAt(shapeLeft_);
    const int right = columnAt(shapeLeft_ + shapeWidth_);
    const QRect area = contentsRect();
    shape_->setGeometry(area.left() + left, area.top(), std::max(right - left, 0) + 1,
                        area.height());
}

void WaveformBox::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        return;
    }
    dragging_ = true;
    const double x = xAt(insideArea(event->position()).x());
    shapeLeft_ = x;
    shapeWidth_ = 0;
    emit pressed(x);
    setCursor(Qt::CrossCursor);
    placeShape();
    shape_->show();
}

void WaveformBox::mouseMoveEvent(QMouseEvent* event) {
    if (!dragging_ || !(event->buttons() & Qt::LeftButton)) {
        return;
    }
    keepCursorInside(event->position());
    const double x = xAt(insideArea(event->position()).x());
    if (x - shapeLeft_ >= 0) {
        shapeWidth_ = x - shapeLeft_;
        placeShape();
    }
    emit dragged(x);
}

void WaveformBox::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !dragging_) {
        return;
    }
    dragging_ = false;
    shape_->hide();
    unsetCursor();
    emit released(xAt(insideArea(event->position()).x()));
}

} // namespace ravelcue::breakspeed
