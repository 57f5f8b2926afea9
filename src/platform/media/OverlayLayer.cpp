#include "OverlayLayer.h"

#include <algorithm>
#include <cstring>

#include <QFont>
#include <QFontMetrics>
#include <QPainter>

namespace ravelcue::media {

QFont OverlayLayer::textFont(const TextOverlay& text, int pictureHeight) {
    // "Arial Bold" names a face, not a family: fontconfig knows the family "Arial" (Liberation
    // Sans where Arial is not installed) and the weight is asked for apart.
    QString family = text.font;
    bool bold = false;
    if (family.endsWith(QLatin1String(" Bold"), Qt::CaseInsensitive)) {
        family.chop(5);
        bold = true;
    }
    QFont font(family);
    font.setBold(bold);
    font.setPixelSize(textPixelSize(text.pointSize, pictureHeight));
    font.setStyleStrategy(QFont::PreferAntialias);
    return font;
}

QImage maskBlack(const QImage& source) {
    QImage rgb = source.format() == QImage::Format_RGB32
                     ? source
                     : source.convertToFormat(QImage::Format_RGB32);
    QImage out(rgb.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < rgb.height(); ++y) {
        const auto* in = reinterpret_cast<const QRgb*>(rgb.constScanLine(y));
        auto* dst = reinterpret_cast<QRgb*>(out.scanLine(y));
        for (int x = 0; x < rgb.width(); ++x) {
            const QRgb colour = in[x] & 0x00FFFFFFu;
            dst[x] = colour == 0 ? 0u : (colour | 0xFF000000u);
        }
    }
    return out;
}

int OverlayLayer::textPixelSize(int pointSize, int pictureHeight) {
    const double base = pointSize * 96.0 / 72.0;
    const double grow = std::max(1.0, pictureHeight / 480.0);
    return std::max(1, static_cast<int>(base * grow + 0.5));
}

void OverlayLayer::setBitmap(const QImage& bitmap) {
    bitmap_ = bitmap;
    dirty_ = true;
}

void OverlayLayer::updateBitmap(const QImage& bitmap, const QRect& changed) {
    if (bitmap_.size() != bitmap.size() || bitmap_.format() != QImage::Format_RGB32 ||
        bitmap.format() != QImage::Format_RGB32) {
        setBitmap(bitmap.convertToFormat(QImage::Format_RGB32).copy());
        return;
    }
    const QRect area = changed & bitmap.rect();
    if (area.isEmpty()) {
        return;
    }
    const auto bytes = static_cast<size_t>(area.width()) * sizeof(QRgb);
    for (int y = area.top(); y <= area.bottom(); ++y) {
        std::memcpy(reinterpret_cast<QRgb*>(bitmap_.scanLine(y)) + area.left(),
                    reinterpret_cast<const QRgb*>(bitmap.constScanLine(y)) + area.left(), bytes);
    }
    pending_ += area;
}

QRect OverlayLayer::textRect(const TextOverlay& text, int pictureHeight) {
    if (text.text.isEmpty()) {
        return {};
    }
    const QFontMetrics metrics(textFont(text, pictureHeight));
    // Generous on every side: italics and accents may reach past the advance.
    const int pad = metrics.height() / 2 + 2;
    return QRect(text.x, text.y, metrics.horizontalAdvance(text.text), metrics.height())
        .adjusted(-pad, -pad, pad, pad);
}

void OverlayLayer::setText(int slot, const TextOverlay& text) {
    if (slot < 0 || slot >= kTextSlots) {
        return;
    }
    TextOverlay& held = texts_[static_cast<size_t>(slot)];
    if (!dirty_ && !composed_.isNull()) {
        pending_ += textRect(held, composed_.height());
        pending_ += textRect(text, composed_.height());
    } else {
        dirty_ = true;
    }
    held = text;
}

void OverlayLayer::clear() {
    bitmap_ = QImage();
    texts_ = {};
    dirty_ = true;
}

bool OverlayLayer::isEmpty() const {
    const bool anyText = std::any_of(texts_.begin(), texts_.end(),
                                     [](const TextOverlay& t) { return !t.text.isEmpty(); });
    return bitmap_.isNull() && !anyText;
}

const QImage& OverlayLayer::composed(QSize pictureSize) const {
    if (!dirty_ && composed_.size() == pictureSize) {
        for (const QRect& area : pending_) {
            composeArea(area);
        }
        pending_ = QRegion();
        return composed_;
    }
    pending_ = QRegion();
    composed_ = QImage(pictureSize, QImage::Format_ARGB32_Premultiplied);
    composed_.fill(Qt::transparent);
    if (!pictureSize.isEmpty()) {
        QPainter painter(&composed_);
        if (!bitmap_.isNull()) {
            // Marker coordinates are picture pixels: the bitmap lies on the picture pixel for
            // pixel from the top left corner, never stretched, whatever its size.
            painter.drawImage(QPoint(0, 0), maskBlack(bitmap_));
        }
        painter.setRenderHint(QPainter::TextAntialiasing);
        for (const TextOverlay& text : texts_) {
            if (text.text.isEmpty()) {
                continue;
            }
            const QFont font = textFont(text, pictureSize.height());
            painter.setFont(font);
            painter.setPen(text.color);
            const QFontMetrics metrics(font);
            painter.drawText(QPoint(text.x, text.y + metrics.ascent()), text.text);
        }
    }
    dirty_ = false;
    return composed_;
}

void OverlayLayer::composeArea(const QRect& wanted) const {
    const QRect area = wanted & composed_.rect();
    if (area.isEmpty()) {
        return;
    }
    const QRect fromBitmap = area & bitmap_.rect();
    for (int y = area.top(); y <= area.bottom(); ++y) {
        auto* dst = reinterpret_cast<QRgb*>(composed_.scanLine(y));
        std::fill(dst + area.left(), dst + area.right() + 1, 0u);
        if (y < fromBitmap.top() || y > fromBitmap.bottom() || fromBitmap.isEmpty()) {
            continue;
        }
        const auto* in = reinterpret_cast<const QRgb*>(bitmap_.constScanLine(y));
        for (int x = fromBitmap.left(); x <= fromBitmap.right(); ++x) {
            const QRgb colour = in[x] & 0x00FFFFFFu;
            dst[x] = colour == 0 ? 0u : (colour | 0xFF000000u);
        }
    }
    QPainter painter(&composed_);
    painter.setClipRect(area);
    painter.setRenderHint(QPainter::TextAntialiasing);
    for (const TextOverlay& text : texts_) {
        if (text.text.isEmpty() || !textRect(text, composed_.height()).intersects(area)) {
            continue;
        }
        const QFont font = textFont(text, composed_.height());
        painter.setFont(font);
        painter.setPen(text.color);
        painter.drawText(QPoint(text.x, text.y + QFontMetrics(font).ascent()), text.text);
    }
}

void OverlayLayer::paint(QPainter& painter, QSize pictureSize) const {
    if (isEmpty()) {
        return;
    }
    painter.drawImage(QPoint(0, 0), composed(pictureSize));
}

void OverlayLayer::burnInto(QImage& frame) const {
    if (isEmpty()) {
        return;
    }
    QPainter painter(&frame);
    paint(painter, frame.size());
}

} // namespace ravelcue::media
