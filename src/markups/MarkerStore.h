#pragma once

#include "DrawingTools.h"
#include "PlayerMarkups.h"
#include "ZoomPan.h"
#include "core/AppState.h"

#include <array>

#include <QImage>
#include <QSize>

namespace ravelcue::media {
struct MediaInstances;
}

namespace ravelcue::markups {

// What lies over each player's picture: its markups (marks, grids, text slots and the shape
// layer they render to), its zoom, and the drawing tools. It hands every change to the player on
// show, text slots to the player's re-encoder as well, and the whole layer to the re-encoder when
// a save begins. UI thread only.
class MarkerStore {
public:
    MarkerStore(AppState& state, media::MediaInstances& media);

    PlayerMarkups& markups(int player) { return markups_.at(static_cast<size_t>(player)); }
    // The shape layer of a player: RGB32, as large as the picture it lies on.
    const QImage& playerOverlay(int player) { return markups(player).layer(); }
    ZoomPan& zoom(int player) { return zoom_.at(static_cast<size_t>(player)); }
    DrawingTools& tools() { return tools_; }

    // Hands what changed in a player's markups since the last call to its player: the changed
    // part of the shape layer, and the changed text slots (to the re-encoder too).
    void DrawMarker(int player);
    // A fresh, empty shape layer at the size of a newly opened picture, and no zoom.
    void fitOverlay(int player, QSize picture);
    // The whole shape layer of a player to its re-encoder, as a save begins.
    void handLayerToRecompress(int player);

    // Wipes every marker and grid of the enabled players and empties all their text slots on
    // players and re-encoders. Every player's text count returns to 0.
    void ClearMarkers();

private:
    AppState& state_;
    media::MediaInstances& media_;
    std::array<PlayerMarkups, kCameraCount> markups_;
    std::array<ZoomPan, kCameraCount> zoom_{};
    DrawingTools tools_;
};

} // namespace ravelcue::markups
