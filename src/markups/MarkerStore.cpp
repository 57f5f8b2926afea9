#include "MarkerStore.h"

#include "core/Rounding.h"
#include "platform/media/MediaInstances.h"

#include <QColor>
#include <QString>

namespace ravelcue::markups {

namespace {

// Until a picture is open the layer covers the player's first size.
constexpr QSize kStartOverlaySize(800, 600);

QImage blackLayer(QSize size) {
    QImage layer(size.isValid() && !size.isEmpty() ? size : kStartOverlaySize,
                 QImage::Format_RGB32);
    layer.fill(Qt::black);
    return layer;
}

} // namespace

MarkerStore::MarkerStore(AppState& state, media::MediaInstances& media)
    : state_(state)
    , media_(media) {
    for (QImage& layer : playerOverlay_) {
        layer = blackLayer(kStartOverlaySize);
    }
}

void MarkerStore::pushOverlay(int player) {
    const QImage& layer = playerOverlay(player);
    media_.play(player).SetBitmapOverlay(layer);
    media_.recompress.at(static_cast<size_t>(player))->SetBitmapOverlay(layer);
}

void MarkerStore::fitOverlay(int player, QSize picture) {
    playerOverlay(player) = blackLayer(picture);
    pushOverlay(player);
}

void MarkerStore::ClearMarkers() {
    const QString font = QStringLiteral("Arial Bold");
    const QColor white(255, 255, 255);
    for (int i = 0; i < kCameraCount; ++i) {
        const auto k = static_cast<size_t>(i);
        if (state_.PlayerEnable[k]) {
            const QSize picture(state_.VideoWidth[k], state_.VideoHeight[k]);
            playerOverlay_[k] = blackLayer(picture.isEmpty() ? playerOverlay_[k].size() : picture);
            media::RecompressInstance& recompress = *media_.recompress[k];
            for (int slot = 0; slot < kTextSlots; ++slot) {
                const auto& at = TextPos[k][static_cast<size_t>(slot)];
                const int x = roundToInt(at[0]);
                const int y = roundToInt(at[1]);
                media_.play(i).SetTextOverlay(slot, QString(), x, y, font, 12, white);
                recompress.SetTextOverlay(slot, QString(), x, y, font, 12, white);
            }
        }
        TextCount[k] = 0;
    }
    // The picture repaints itself when its overlay changes, so no position nudge is needed.
    for (int i = 0; i < kCameraCount; ++i) {
        if (state_.PlayerEnable[static_cast<size_t>(i)]) {
            pushOverlay(i);
        }
    }
}

} // namespace ravelcue::markups
