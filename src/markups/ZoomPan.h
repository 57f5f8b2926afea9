#pragma once

#include <QPointF>
#include <QRect>
#include <QSize>
#include <QSizeF>

namespace ravelcue::markups {

inline constexpr int kMaxZoom = 9;
inline constexpr float kPanStep = 10.0F;

// The zoom of one player: level Z of 0..9 and the offset of the shown rectangle from its centred
// place, in picture pixels.
struct ZoomPan {
    int level = 0;
    float PanX = 0.0F;
    float PanY = 0.0F;
};

// The rectangle of the picture shown at this zoom: each level takes a twentieth of the picture
// off every side, so the rectangle stays centred at any size. Rounded, ties to even. Not brought
// back inside the picture; the view does that.
QRect zoomRect(const ZoomPan& zoom, QSize picture);
// How far the offset may go from the centre at this level, each way.
QSizeF panLimits(int level, QSize picture);

enum class PanButton { Up = 0, Down = 1, Left = 2, Right = 3, Center = 4 };
enum class PanOutcome { NeedsZoom, Moved, Refused };
// One press of the pan pad: a step of 10 pixels while the new offset stays short of the limit.
// At level 0 nothing moves, also for Center.
PanOutcome panStep(ZoomPan& zoom, PanButton button, QSize picture);

// The mouse wheel: `steps` levels up (positive) or down, keeping the picture point under the
// pointer where it is on screen, the offset kept within its limits.
ZoomPan wheelZoom(const ZoomPan& zoom, int steps, QPointF pictureAt, QSize picture);
// A drag that moved the pointer by `pictureDelta` picture pixels: the picture follows the pointer
// within the limits.
ZoomPan dragPan(const ZoomPan& zoom, QPointF pictureDelta, QSize picture);

// The picture pixel under a control position, the position being reported as if the picture
// filled the control, and `shown` the part of the picture on show.
QPointF pictureFromControl(QPointF control, QSizeF controlSize, const QRect& shown);

} // namespace ravelcue::markups
