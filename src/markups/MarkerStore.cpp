#include "MarkerStore.h"

#include "core/Rounding.h"
#include "platform/media/MediaInstances.h"

#include <QString>

namespace ravelcue::markups {

MarkerStore::MarkerStore(AppState& state, media::MediaInstances& media)
    : state_(state)
    , media_(media) {}

void MarkerStore::DrawMarker(int player) {
    PlayerMarkups& mine = markups(player);
    const PlayerMarkups::Changes changes = mine.takeChanges();
    media::PlayerInstance& shown = media_.play(player);
    if (!changes.layer.isEmpty()) {
        shown.UpdateBitmapOverlay(mine.layer(), changes.layer);
    }
    media::RecompressInstance& recompress = *media_.recompress.at(static_cast<size_t>(player));
    const QString font = QStringLiteral("Arial Bold");
    for (const int slot : changes.textSlots) {
        const TextSlot& text = mine.slot(slot);
        int x = text.x;
        int y = text.y;
        if (text.text.isEmpty()) {
            // An emptied slot keeps the place it stood at.
            const auto& at = mine.TextPos[static_cast<size_t>(slot)];
            x = roundToInt(at[0]);
            y = roundToInt(at[1]);
        }
        const QColor colour = colourOf(text.text.isEmpty() ? kWhite : text.colour);
        shown.SetTextOverlay(slot, text.text, x, y, font, 12, colour);
        recompress.SetTextOverlay(slot, text.text, x, y, font, 12, colour);
    }
}

void MarkerStore::fitOverlay(int player, QSize picture) {
    markups(player).fit(picture);
    zoom(player) = ZoomPan{};
    media_.play(player).SetZoomRegion(0, 0, 0, 0);
    DrawMarker(player);
}

void MarkerStore::handLayerToRecompress(int player) {
    media_.recompress.at(static_cast<size_t>(player))->SetBitmapOverlay(markups(player).layer());
}

void MarkerStore::ClearMarkers() {
    for (int i = 0; i < kCameraCount; ++i) {
        if (state_.PlayerEnable[static_cast<size_t>(i)]) {
            markups(i).clear();
            DrawMarker(i);
        } else {
            markups(i).TextCount = 0;
        }
    }
}

} // namespace ravelcue::markups
