#pragma once

#include "PlayerMarkups.h"

#include <cstdint>
#include <vector>

#include <QPointF>
#include <QString>

namespace ravelcue::markups {

// The colour and width a new shape is drawn with, read afresh at each press.
struct MarkerPen {
    std::int32_t colour = 65280;
    int width = 2;
};

// What a mouse event asks of the window beyond the markups it changed.
struct GestureResult {
    // The text slots ran out: the warning box is due, and the count has gone back to 0.
    bool slotsExhausted = false;
    // The tool button to bring up ("Text" after a note is placed, "Angle" after an angle).
    QString releaseButton;
};

// The Angle tool's reading of leg 1 from the vertex to leg 2, in degrees, as shown: "90.0°",
// "-90.0°". Clockwise on screen is positive.
QString angleReading(QPointF leg1, QPointF vertex, QPointF leg2);

// The drawing tools: which tool is chosen and the gesture in hand, turning the press, move and
// release of the mouse on a player's picture (in picture pixels) into previews, finished marks
// and text slots of that player's markups. One gesture runs at a time, on one player.
class DrawingTools {
public:
    // The tool in use (lngShape); ShapeNone after a finished angle.
    int lngShape = ShapeLine;
    // A shape is being dragged, or a note waits to be placed.
    bool m_Drawing = false;
    // The Angle tool is on its second leg.
    bool AngleSecondLeg = false;

    // A tool button: drops any gesture in hand on `on`.
    void chooseTool(int shape, PlayerMarkups* on);
    // frmTextInput's OK with a note: it follows the pointer until a click places it.
    void noteReady(const QString& text, std::int32_t colour);
    const QString& noteText() const { return strNoteText_; }
    // The player the gesture in hand runs on, -1 when none does.
    int gesturePlayer() const { return player_; }
    // Drops the gesture in hand: its preview and any moving note are taken away from `on`.
    void abandon(PlayerMarkups& on);

    GestureResult press(PlayerMarkups& markups, int player, QPointF at, MarkerPen pen);
    // `button` 1 while the left button is held.
    GestureResult move(PlayerMarkups& markups, int player, int button, QPointF at);
    GestureResult release(PlayerMarkups& markups, QPointF at);

private:
    MarkerShape current() const;
    void secondPoint(QPointF at);
    GestureResult placeNote(PlayerMarkups& markups, QPointF at);
    GestureResult showReading(PlayerMarkups& markups);

    int player_ = -1;
    MarkerPen pen_;
    QPointF marker1_;
    QPointF marker2_;
    QPointF vertex_;
    QPointF leg1_;
    QPointF leg2_;
    std::vector<QPointF> stroke_;
    QString strNoteText_;
    std::int32_t lngNoteColor_ = kReadingColour;
    int readingSlot_ = -1;
    int previewSlot_ = -1;
};

} // namespace ravelcue::markups
