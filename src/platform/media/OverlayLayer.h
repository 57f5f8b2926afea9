#pragma once

#include <array>

#include <QColor>
#include <QFont>
#include <QImage>
#include <QRegion>
#include <QSize>
#include <QString>

class QPainter;

namespace ravelcue::media {

// One text overlay: text at picture pixel (x, y), the top left corner of its line.
struct TextOverlay {
    QString text;
    int x = 0;
    int y = 0;
    QString font = QStringLiteral("Arial Bold");
    int pointSize = 12;
    QColor color = Qt::white;
};

// What lies over a picture: the shape bitmap (black lets the picture through; it lies on the
// picture pixel for pixel from the top left corner) and numbered text slots. The same layer is
// painted on screen and burnt into saved frames, so that what the user sees is what is saved. Not
// thread-safe; copy it to hand it to another thread.
class OverlayLayer {
public:
    static constexpr int kTextSlots = 40;

    void setBitmap(const QImage& bitmap);
    // Takes over the part `changed` of a bitmap of which the rest was handed over before; the
    // layer keeps a copy of its own, so the caller may go on drawing into its bitmap.
    void updateBitmap(const QImage& bitmap, const QRect& changed);
    const QImage& bitmap() const { return bitmap_; }
    // slot outside 0..39 is ignored; an empty text clears the slot.
    void setText(int slot, const TextOverlay& text);
    const TextOverlay& text(int slot) const { return texts_.at(static_cast<size_t>(slot)); }
    void clear();
    bool isEmpty() const;

    // The whole layer at the picture's size, premultiplied ARGB, transparent where nothing is
    // drawn. Built on first use after a change and kept until the next change.
    const QImage& composed(QSize pictureSize) const;
    // Draws the layer over a picture of that size, the painter working in picture pixels.
    void paint(QPainter& painter, QSize pictureSize) const;
    // Burns the layer into a frame in place; the frame must be RGB32, ARGB32 or premultiplied.
    void burnInto(QImage& frame) const;

    // Text pixel height on a picture of the given height: point sizes are meant for a picture
    // 480 lines high and grow with taller pictures, so notes stay legible on HD video.
    static int textPixelSize(int pointSize, int pictureHeight);
    // The font a text slot is drawn with on a picture of the given height.
    static QFont textFont(const TextOverlay& text, int pictureHeight);

private:
    // Where a text slot's line lies on a picture of that height.
    static QRect textRect(const TextOverlay& text, int pictureHeight);
    void composeArea(const QRect& area) const;

    QImage bitmap_;
    std::array<TextOverlay, kTextSlots> texts_{};
    mutable QImage composed_;
    mutable bool dirty_ = true;
    // Parts of composed_ to build again, while it is not dirty as a whole.
    mutable QRegion pending_;
};

// Makes black pixels of an RGB32 image transparent and the others opaque, as premultiplied ARGB.
QImage maskBlack(const QImage& rgb32);

} // namespace ravelcue::media
