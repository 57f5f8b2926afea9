#include "core/Geometry.h"

#include <cmath>

namespace ravelcue::geometry {

namespace {
// The figure the angle routines have always used for pi, not the nearest float to pi.
constexpr float kPi = 3.14159265f;
constexpr float kRightAngleLimit = 0.0001f;
} // namespace

float DotProduct(float ax, float ay, float bx, float by, float cx, float cy) {
    return (ax - bx) * (cx - bx) + (ay - by) * (cy - by);
}

float CrossProduct(float ax, float ay, float bx, float by, float cx, float cy) {
    return (ax - bx) * (cy - by) - (ay - by) * (cx - bx);
}

float ATan2(float opposite, float adjacent) {
    float t = 0.0f;
    if (std::fabs(adjacent) < kRightAngleLimit) {
        t = kPi / 2.0f;
    } else {
        t = std::fabs(std::atan(opposite / adjacent));
    }
    if (adjacent < 0.0f) {
        t = kPi - t;
    }
    if (opposite < 0.0f) {
        t = -t;
    }
    return t;
}

float GetAngle(float ax, float ay, float bx, float by, float cx, float cy) {
    return ATan2(CrossProduct(ax, ay, bx, by, cx, cy), DotProduct(ax, ay, bx, by, cx, cy));
}

} // namespace ravelcue::geometry
