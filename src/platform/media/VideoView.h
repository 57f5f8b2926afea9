#pragma once

#include "OverlayLayer.h"

#include <atomic>

#include <QImage>
#include <QMutex>
#include <QRect>
#include <QWidget>

namespace ravelcue::media {

// The picture of one instance: the newest frame, kept in its aspect ratio inside the control,
// with the overlay layer on top. Frames may be presented from any thread (the newest wins);
// everything else is UI thread only.
//
// Mouse positions are reported in control pixels as if the picture filled the whole control, so
// that position × picture size ÷ control size is the picture pixel under the mouse, whatever the
// shapes of picture and control. Buttons: 1 left, 2 right, 4 middle. Shift: 1 Shift, 2 Ctrl, 4 Alt.
class VideoView : public QWidget {
    Q_OBJECT
public:
    explicit VideoView(QWidget* parent = nullptr);

    // Thread-safe. A null image blanks the view.
    void presentFrame(const QImage& frame);
    QImage currentFrame() const;
    QSize pictureSize() const;

    OverlayLayer& overlay() { return overlay_; }
    const OverlayLayer& overlay() const { return overlay_; }
    // Call after changing the overlay; the picture repaints at the next turn of the event loop.
    void overlayChanged();
    // The same, when only this part of the picture's overlay changed.
    void overlayChanged(const QRect& pictureArea);

    // The part of the picture shown; an empty rectangle shows all of it.
    void setZoomRegion(const QRect& region);
    QRect zoomRegion() const { return zoom_; }

    // Where the picture is drawn inside the control.
    QRect pictureRect() const;
    // The part of a picture of that size that is on show, zoom region applied.
    QRect shownRegion(QSize picture) const;
    // The frame as shown, overlays burnt in, at picture size.
    QImage composedFrame() const;

signals:
    void mousePressed(int button, int shift, double x, double y);
    void mouseMoved(int button, int shift, double x, double y);
    void mouseReleased(int button, int shift, double x, double y);
    void PictureDoubleClick();
    // The wheel turned by `steps` notches (away from the user positive) over control position
    // (x, y), reported as the mouse positions are.
    void wheelTurned(int steps, double x, double y);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    QPointF toControlPosition(QPointF widgetPosition) const;
    void emitMouse(QMouseEvent* event, int kind);

    mutable QMutex frameMutex_;
    QImage frame_;
    std::atomic<bool> updatePending_{false};
    OverlayLayer overlay_;
    QRect zoom_;
};

int mouseButtonCode(Qt::MouseButtons buttons);
int shiftCode(Qt::KeyboardModifiers modifiers);

} // namespace ravelcue::media
