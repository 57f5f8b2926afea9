#pragma once

// The vector routines behind every angle the program shows or judges: the Angle tool's reading
// and the perpendicular rule of a training run. Plain 32-bit float arithmetic, so that both give
// the same figure for the same three points. B is always the vertex.
namespace ravelcue::geometry {

// (A - B) . (C - B)
float DotProduct(float ax, float ay, float bx, float by, float cx, float cy);
// (A - B) x (C - B), the z part of the cross product.
float CrossProduct(float ax, float ay, float bx, float by, float cx, float cy);
// The angle of a vector given its opposite side, then its adjacent side, between -pi and pi.
// An adjacent side under 0.0001 counts as a right angle; an opposite side of exactly 0 with a
// negative adjacent side gives +pi.
float ATan2(float opposite, float adjacent);
// The signed angle from leg BA to leg BC in radians; with y growing downwards a clockwise turn
// on screen is positive.
float GetAngle(float ax, float ay, float bx, float by, float cx, float cy);

} // namespace ravelcue::geometry
