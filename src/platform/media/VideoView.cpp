#include "VideoView.h"

#include <algorithm>

#include <QMetaObject>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

namespace ravelcue::media {

namespace {
enum MouseKind { Press, Move, Release };
}

int mouseButtonCode(Qt::MouseButtons buttons) {
    int code = 0;
    if (buttons & Qt::LeftButton) {
        code |= 1;
    }
    if (buttons & Qt::RightButton) {
        code |= 2;
    }
    if (buttons & Qt::MiddleButton) {
        code |= 4;
    }
    return code;
}

int shiftCode(Qt::KeyboardModifiers modifiers) {
    int code = 0;
    if (modifiers & Qt::ShiftModifier) {
        code |= 1;
    }
    if (modifiers & Qt::ControlModifier) {
        code |= 2;
    }
    if (modifiers & Qt::AltModifier) {
        code |= 4;
    }
    return code;
}

VideoView::VideoView(QWidget* parent)
    : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setAutoFillBackground(false);
}

void VideoView::presentFrame(const QImage& frame) {
    {
        QMutexLocker lock(&frameMutex_);
        frame_ = frame;
    }
    if (!updatePending_.exchange(true)) {
        QMetaObject::invokeMethod(
            this,
            [this] {
                updatePending_ = false;
                update();
            },
            Qt::QueuedConnection);
    }
}

QImage VideoView::currentFrame() const {
    QMutexLocker lock(&frameMutex_);
    return frame_;
}

QSize VideoView::pictureSize() const {
    QMutexLocker lock(&frameMutex_);
    return frame_.size();
}

void VideoView::overlayChanged() {
    update();
}

void VideoView::overlayChanged(const QRect& pictureArea) {
    const QSize picture = pictureSize();
    const QRect shown = shownRegion(picture);
    const QRect target = pictureRect();
    if (shown.isEmpty() || target.isEmpty()) {
        update();
        return;
    }
    const double sx = static_cast<double>(target.width()) / shown.width();
    const double sy = static_cast<double>(target.height()) / shown.height();
    const QRectF on(target.left() + (pictureArea.left() - shown.left()) * sx,
                    target.top() + (pictureArea.top() - shown.top()) * sy, pictureArea.width() * sx,
                    pictureArea.height() * sy);
    update(on.toAlignedRect().adjusted(-2, -2, 2, 2) & rect());
}

void VideoView::setZoomRegion(const QRect& region) {
    zoom_ = region;
    update();
}

QRect VideoView::pictureRect() const {
    const QSize picture = pictureSize();
    if (picture.isEmpty()) {
        return rect();
    }
    QSize fitted = picture.scaled(size(), Qt::KeepAspectRatio);
    return QRect(QPoint((width() - fitted.width()) / 2, (height() - fitted.height()) / 2), fitted);
}

QImage VideoView::composedFrame() const {
    QImage frame = currentFrame();
    if (frame.isNull()) {
        return frame;
    }
    frame = frame.convertToFormat(QImage::Format_RGB32);
    overlay_.burnInto(frame);
    return frame;
}

void VideoView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    const QImage frame = currentFrame();
    if (frame.isNull()) {
        return;
    }
    const QRect target = pictureRect();
    const QRect source = shownRegion(frame.size());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(target, frame, source);
    if (!overlay_.isEmpty()) {
        painter.drawImage(target, overlay_.composed(frame.size()), source);
    }
}

QRect VideoView::shownRegion(QSize picture) const {
    if (zoom_.isEmpty() || picture.isEmpty()) {
        return QRect(QPoint(0, 0), picture);
    }
    // A region that reaches past the picture (panned, then zoomed out) is moved back inside it,
    // keeping its size, so that the enlargement stays what the user chose.
    const int width = std::min(zoom_.width(), picture.width());
    const int height = std::min(zoom_.height(), picture.height());
    const int x = std::clamp(zoom_.x(), 0, picture.width() - width);
    const int y = std::clamp(zoom_.y(), 0, picture.height() - height);
    return {x, y, width, height};
}

QPointF VideoView::toControlPosition(QPointF position) const {
    const QRect picture = pictureRect();
    if (picture.isEmpty() || picture.size() == size()) {
        return position;
    }
    return {(position.x() - picture.left()) * width() / picture.width(),
            (position.y() - picture.top()) * height() / picture.height()};
}

void VideoView::emitMouse(QMouseEvent* event, int kind) {
    const QPointF at = toControlPosition(event->position());
    const int shift = shiftCode(event->modifiers());
    switch (kind) {
    case Press:
        emit mousePressed(mouseButtonCode(event->button()), shift, at.x(), at.y());
        break;
    case Move:
        emit mouseMoved(mouseButtonCode(event->buttons()), shift, at.x(), at.y());
        break;
    default:
        emit mouseReleased(mouseButtonCode(event->button()), shift, at.x(), at.y());
        break;
    }
}

void VideoView::mousePressEvent(QMouseEvent* event) {
    emitMouse(event, Press);
}

void VideoView::mouseMoveEvent(QMouseEvent* event) {
    emitMouse(event, Move);
}

void VideoView::mouseReleaseEvent(QMouseEvent* event) {
    emitMouse(event, Release);
}

void VideoView::mouseDoubleClickEvent(QMouseEvent*) {
    emit PictureDoubleClick();
}

void VideoView::wheelEvent(QWheelEvent* event) {
    const int steps = event->angleDelta().y() / 120;
    if (steps == 0) {
        event->ignore();
        return;
    }
    const QPointF at = toControlPosition(event->position());
    emit wheelTurned(steps, at.x(), at.y());
    event->accept();
}

} // namespace ravelcue::media
