#include "ZoomPan.h"

#include "core/Rounding.h"

#include <algorithm>
#include <cmath>

namespace ravelcue::markups {

namespace {

double stepX(QSize picture) {
    return picture.width() / 20.0;
}
double stepY(QSize picture) {
    return picture.height() / 20.0;
}

float clampPan(double value, double limit) {
    return static_cast<float>(std::clamp(value, -limit, limit));
}

} // namespace

QRect zoomRect(const ZoomPan& zoom, QSize picture) {
    const double z = zoom.level;
    const double scale = 1.0 - z * 0.1;
    return {roundToInt(zoom.PanX + z * stepX(picture)), roundToInt(zoom.PanY + z * stepY(picture)),
            roundToInt(scale * picture.width()), roundToInt(scale * picture.height())};
}

QSizeF panLimits(int level, QSize picture) {
    return {level * stepX(picture), level * stepY(picture)};
}

PanOutcome panStep(ZoomPan& zoom, PanButton button, QSize picture) {
    if (zoom.level == 0) {
        return PanOutcome::NeedsZoom;
    }
    const QSizeF limit = panLimits(zoom.level, picture);
    auto step = [](float& pan, float by, double bound) {
        if (std::abs(pan + by) < bound) {
            pan += by;
            return PanOutcome::Moved;
        }
        return PanOutcome::Refused;
    };
    switch (button) {
    case PanButton::Up:
        return step(zoom.PanY, -kPanStep, limit.height());
    case PanButton::Down:
        return step(zoom.PanY, kPanStep, limit.height());
    case PanButton::Left:
        return step(zoom.PanX, -kPanStep, limit.width());
    case PanButton::Right:
        return step(zoom.PanX, kPanStep, limit.width());
    case PanButton::Center:
        break;
    }
    zoom.PanX = 0.0F;
    zoom.PanY = 0.0F;
    return PanOutcome::Moved;
}

ZoomPan wheelZoom(const ZoomPan& zoom, int steps, QPointF pictureAt, QSize picture) {
    ZoomPan next;
    next.level = std::clamp(zoom.level + steps, 0, kMaxZoom);
    if (next.level == 0 || picture.isEmpty()) {
        return next;
    }
    const QRect before = zoomRect(zoom, picture);
    // Where the pointer stands within the rectangle on show, as a fraction of it.
    const double fx = before.width() > 0 ? (pictureAt.x() - before.x()) / before.width() : 0.5;
    const double fy = before.height() > 0 ? (pictureAt.y() - before.y()) / before.height() : 0.5;
    const double scale = 1.0 - next.level * 0.1;
    const double x = pictureAt.x() - fx * scale * picture.width();
    const double y = pictureAt.y() - fy * scale * picture.height();
    const QSizeF limit = panLimits(next.level, picture);
    next.PanX = clampPan(x - next.level * stepX(picture), limit.width());
    next.PanY = clampPan(y - next.level * stepY(picture), limit.height());
    return next;
}

ZoomPan dragPan(const ZoomPan& zoom, QPointF pictureDelta, QSize picture) {
    ZoomPan next = zoom;
    const QSizeF limit = panLimits(zoom.level, picture);
    next.PanX = clampPan(zoom.PanX - pictureDelta.x(), limit.width());
    next.PanY = clampPan(zoom.PanY - pictureDelta.y(), limit.height());
    return next;
}

QPointF pictureFromControl(QPointF control, QSizeF controlSize, const QRect& shown) {
    if (controlSize.isEmpty()) {
        return control;
    }
    return {shown.x() + control.x() * shown.width() / controlSize.width(),
            shown.y() + control.y() * shown.height() / controlSize.height()};
}

} // namespace ravelcue::markups
