#pragma once

#include "core/AppState.h"

#include <array>

#include <QImage>
#include <QSize>

namespace ravelcue::media {
struct MediaInstances;
}

namespace ravelcue::markups {

inline constexpr int kTextSlots = 40;

// The shapes tool by number, as lngShape holds it.
enum Shape : int {
    ShapeLine = 0,
    ShapeVline = 1,
    ShapeHline = 2,
    ShapeRectangle = 3,
    ShapeEllipse = 4,
    ShapeFreehand = 5,
    ShapeAngle = 6,
    ShapeText = 7,
    ShapeNone = 99,
};

// What lies over each player's picture: the shape layer, a bitmap per player in which black lets
// the picture through, and the numbered text slots the players and re-encoders hold. The program
// keeps no list of shapes; they live only as pixels of the bitmap. UI thread only.
class MarkerStore {
public:
    MarkerStore(AppState& state, media::MediaInstances& media);

    // The shape layer of a player: RGB32, as large as the picture it lies on.
    QImage& playerOverlay(int player) { return playerOverlay_.at(static_cast<size_t>(player)); }
    // Hands a player's shape layer to its player and its re-encoder.
    void pushOverlay(int player);
    // A fresh, empty shape layer at the size of a newly opened picture, handed over at once.
    void fitOverlay(int player, QSize picture);

    // Wipes every marker of the enabled players: shape layers back to black, all text slots
    // emptied on players and re-encoders. Every player's text count returns to 0.
    void ClearMarkers();

    // Next free text slot of each player.
    std::array<int, kCameraCount> TextCount{};
    // Where each text slot stands, in picture pixels times 15.
    std::array<std::array<std::array<float, 2>, kTextSlots>, kCameraCount> TextPos{};
    // The drawing tool in use.
    int lngShape = ShapeLine;

private:
    AppState& state_;
    media::MediaInstances& media_;
    std::array<QImage, kCameraCount> playerOverlay_;
};

} // namespace ravelcue::markups
