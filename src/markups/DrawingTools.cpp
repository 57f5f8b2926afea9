#include "DrawingTools.h"

#include "core/Geometry.h"
#include "core/Rounding.h"

#include <cmath>

namespace ravelcue::markups {

namespace {

float f(double value) {
    return static_cast<float>(value);
}

} // namespace

QString angleReading(QPointF leg1, QPointF vertex, QPointF leg2) {
    static const double pi = 4.0 * std::atan(1.0);
    const double degrees = geometry::GetAngle(f(leg1.x()), f(leg1.y()), f(vertex.x()),
                                              f(vertex.y()), f(leg2.x()), f(leg2.y())) /
                           pi * 180.0;
    return QString::number(degrees, 'f', 1) + QChar(0x00B0);
}

void DrawingTools::chooseTool(int shape, PlayerMarkups* on) {
    if (on != nullptr && player_ >= 0) {
        abandon(*on);
    }
    lngShape = shape;
    m_Drawing = false;
    AngleSecondLeg = false;
    player_ = -1;
}

void DrawingTools::noteReady(const QString& text, std::int32_t colour) {
    strNoteText_ = text;
    lngNoteColor_ = colour;
    m_Drawing = true;
}

void DrawingTools::abandon(PlayerMarkups& on) {
    on.setPreview(std::nullopt);
    if (previewSlot_ >= 0) {
        on.setSlot(previewSlot_, TextSlot{});
        previewSlot_ = -1;
    }
    if (lngShape == ShapeAngle && AngleSecondLeg) {
        if (m_Drawing && readingSlot_ >= 0) {
            on.setSlot(readingSlot_, TextSlot{});
        } else if (!m_Drawing) {
            ++on.TextCount; // the angle was finished; its reading keeps its slot
        }
    }
    readingSlot_ = -1;
    AngleSecondLeg = false;
    if (lngShape != ShapeText) {
        m_Drawing = false;
    }
    player_ = -1;
}

MarkerShape DrawingTools::current() const {
    MarkerShape shape;
    shape.shape = lngShape;
    shape.colour = pen_.colour;
    shape.width = pen_.width;
    if (lngShape == ShapeFreehand) {
        shape.points = stroke_;
    } else if (lngShape == ShapeAngle) {
        shape.points = AngleSecondLeg ? std::vector<QPointF>{vertex_, leg1_, marker1_}
                                      : std::vector<QPointF>{vertex_, marker1_};
    } else {
        shape.points = {marker1_, marker2_};
    }
    return shape;
}

void DrawingTools::secondPoint(QPointF at) {
    if (lngShape != ShapeVline) {
        marker2_.setX(at.x());
    }
    if (lngShape != ShapeHline) {
        marker2_.setY(at.y());
    }
}

GestureResult DrawingTools::press(PlayerMarkups& markups, int player, QPointF at, MarkerPen pen) {
    switch (lngShape) {
    case ShapeLine:
    case ShapeVline:
    case ShapeHline:
    case ShapeRectangle:
    case ShapeEllipse:
        m_Drawing = true;
        player_ = player;
        pen_ = pen;
        marker1_ = marker2_ = at;
        markups.setPreview(current());
        break;
    case ShapeFreehand:
        m_Drawing = true;
        player_ = player;
        pen_ = pen;
        stroke_ = {at};
        break;
    case ShapeAngle:
        if (!AngleSecondLeg) {
            m_Drawing = true;
            player_ = player;
            pen_ = pen;
            vertex_ = marker1_ = at;
            markups.setPreview(current());
        } else if (m_Drawing) {
            m_Drawing = false;
            leg2_ = marker1_;
            MarkerShape angle = current();
            markups.setPreview(std::nullopt);
            markups.commit(Mark{std::move(angle), readingSlot_});
        }
        break;
    case ShapeText:
        if (m_Drawing) {
            return placeNote(markups, at);
        }
        break;
    default:
        break;
    }
    return {};
}

GestureResult DrawingTools::move(PlayerMarkups& markups, int player, int button, QPointF at) {
    if (!m_Drawing) {
        return {};
    }
    switch (lngShape) {
    case ShapeLine:
    case ShapeVline:
    case ShapeHline:
    case ShapeRectangle:
    case ShapeEllipse:
        secondPoint(at);
        markups.setPreview(current());
        break;
    case ShapeFreehand: {
        stroke_.push_back(at);
        MarkerShape segment = current();
        segment.points = {stroke_[stroke_.size() - 2], at};
        markups.setPreview(current(), segment.bounds());
        break;
    }
    case ShapeAngle:
        if (AngleSecondLeg) {
            // The first leg stands still: only the second leg's old and new places change.
            MarkerShape leg = current();
            leg.points = {vertex_, marker1_};
            QRect changed = leg.bounds();
            marker1_ = leg2_ = at;
            leg.points = {vertex_, marker1_};
            changed |= leg.bounds();
            markups.setPreview(current(), changed);
            return showReading(markups);
        }
        if ((button & 1) != 0) {
            marker1_ = at;
            markups.setPreview(current());
        }
        break;
    case ShapeText: {
        // No limit here: at a count of 39 the moving note lands in the spare slot 39.
        player_ = player;
        marker1_ = at;
        if (previewSlot_ >= 0 && previewSlot_ != markups.TextCount) {
            markups.setSlot(previewSlot_, TextSlot{});
        }
        previewSlot_ = markups.TextCount;
        markups.setSlot(previewSlot_, TextSlot{strNoteText_, roundToInt(at.x()),
                                               roundToInt(at.y() - 15), lngNoteColor_});
        break;
    }
    default:
        break;
    }
    return {};
}

GestureResult DrawingTools::release(PlayerMarkups& markups, QPointF at) {
    GestureResult result;
    switch (lngShape) {
    case ShapeLine:
    case ShapeVline:
    case ShapeHline:
    case ShapeRectangle:
    case ShapeEllipse:
        if (m_Drawing) {
            m_Drawing = false;
            secondPoint(at);
            MarkerShape shape = current();
            markups.setPreview(std::nullopt);
            if (!shape.paintsNothing()) {
                markups.commit(Mark{std::move(shape), -1});
            }
            player_ = -1;
        }
        break;
    case ShapeFreehand:
        if (m_Drawing) {
            m_Drawing = false;
            MarkerShape stroke = current();
            markups.setPreview(std::nullopt);
            if (stroke_.size() > 1) {
                markups.commit(Mark{std::move(stroke), -1});
            }
            stroke_.clear();
            player_ = -1;
        }
        break;
    case ShapeAngle:
        if (!AngleSecondLeg && m_Drawing) {
            leg1_ = leg2_ = marker1_ = at;
            AngleSecondLeg = true;
            markups.setPreview(current());
        } else if (AngleSecondLeg && !m_Drawing) {
            AngleSecondLeg = false;
            ++markups.TextCount;
            lngShape = ShapeNone;
            readingSlot_ = -1;
            player_ = -1;
            result.releaseButton = QStringLiteral("Angle");
        }
        break;
    default:
        break;
    }
    return result;
}

GestureResult DrawingTools::placeNote(PlayerMarkups& markups, QPointF at) {
    GestureResult result;
    const int x = roundToInt(at.x());
    const int y = roundToInt(at.y());
    if (markups.TextCount >= kUsableTextSlots) {
        // The note stays in hand and the next click places it in slot 0.
        markups.TextCount = 0;
        result.slotsExhausted = true;
        return result;
    }
    const int slot = markups.TextCount;
    if (previewSlot_ >= 0 && previewSlot_ != slot) {
        markups.setSlot(previewSlot_, TextSlot{});
    }
    previewSlot_ = -1;
    markups.TextPos[static_cast<size_t>(slot)] = {f(at.x() * 15), f(at.y() * 15)};
    markups.setSlot(slot, TextSlot{strNoteText_, x, y - 15, lngNoteColor_});
    markups.commit(Mark{std::nullopt, slot});
    ++markups.TextCount;
    m_Drawing = false;
    player_ = -1;
    result.releaseButton = QStringLiteral("Text");
    return result;
}

GestureResult DrawingTools::showReading(PlayerMarkups& markups) {
    GestureResult result;
    if (markups.TextCount >= kUsableTextSlots) {
        markups.TextCount = 0;
        result.slotsExhausted = true;
        return result;
    }
    const int slot = markups.TextCount;
    if (readingSlot_ >= 0 && readingSlot_ != slot) {
        markups.setSlot(readingSlot_, TextSlot{});
    }
    readingSlot_ = slot;
    markups.TextPos[static_cast<size_t>(slot)] = {f(marker1_.x() * 15), f(marker1_.y() * 15)};
    markups.setSlot(slot,
                    TextSlot{angleReading(leg1_, vertex_, leg2_), roundToInt(marker1_.x() + 10),
                             roundToInt(marker1_.y() - 10), kReadingColour});
    return result;
}

} // namespace ravelcue::markups
