#pragma once

#include "breakspeed/Waveform.h"

#include <cstdint>
#include <span>

#include <QColor>
#include <QFrame>
#include <QImage>

namespace ravelcue::breakspeed {

// A picture box for a waveform (Picture1, Picture2). What is drawn into it stays until it is
// cleared, as on paper: lines drawn later cover the waveform, and erasing is drawing in the
// background colour. Its scale is set by DrawWaveform, and mouse positions arrive in that scale:
// X in words. During a left-button drag the mouse can't leave the box, and the rubber band (a
// child named Shape1 or Shape2) follows it to the right. UI thread only.
class WaveformBox : public QFrame {
    Q_OBJECT
public:
    static constexpr QRgb kBackground = qRgb(224, 224, 224); // 14737632
    static constexpr QRgb kForeground = qRgb(0, 0, 0);

    WaveformBox(QWidget* parent, const QString& name, const QString& toolTip,
                const QString& shapeName);

    // Paints the whole box in the background colour.
    void Cls();
    // Clears the box and draws the words start, start + 2, ... up to end, scaled so that the
    // stretch fills the box and scaleHeight (twice the loudest word) its height.
    void DrawWaveform(std::span<const std::int16_t> samples, int scaleHeight, int start, int end);
    // A line over the whole height at X in the box's scale, drawn into what the box keeps.
    void drawFullHeightLine(double x, QRgb colour);

    const WaveformScale& scale() const { return scale_; }
    QWidget* shape() const { return shape_; }
    // Where X lies on screen: the pixel column inside the box, and back.
    int columnAt(double x) const;
    double xAt(double pixel) const;
    // What the box shows, as a person would see it.
    const QImage& canvas() const { return canvas_; }

signals:
    // The left button went down, moved with it held, and came up, at X in the box's scale.
    void pressed(double x);
    void dragged(double x);
    void released(double x);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    // The pixel inside the drawing area under a position of the widget, kept inside it.
    QPointF insideArea(const QPointF& position) const;
    // Holds the mouse inside the box while dragging, as the old ClipCursor did.
    void keepCursorInside(const QPointF& position);
    void placeShape();

    QImage canvas_;
    WaveformScale scale_;
    QWidget* shape_ = nullptr;
    bool dragging_ = false;
    double shapeLeft_ = 0;  // in the box's scale
    double shapeWidth_ = 0; // never negative: the band only follows to the right
};

} // namespace ravelcue::breakspeed
