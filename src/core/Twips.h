#pragma once

namespace ravelcue {

// Converts between twips (1/1440 inch) and pixels at a screen's resolution: 15 twips a pixel at
// 96 dots an inch.
struct TwipsScale {
    double dotsPerInchX = 96.0;
    double dotsPerInchY = 96.0;

    double twipsPerPixelX() const { return 1440.0 / dotsPerInchX; }
    double twipsPerPixelY() const { return 1440.0 / dotsPerInchY; }
    double toPixelsX(double twips) const { return twips / twipsPerPixelX(); }
    double toPixelsY(double twips) const { return twips / twipsPerPixelY(); }
    double toTwipsX(double pixels) const { return pixels * twipsPerPixelX(); }
    double toTwipsY(double pixels) const { return pixels * twipsPerPixelY(); }
};

} // namespace ravelcue
