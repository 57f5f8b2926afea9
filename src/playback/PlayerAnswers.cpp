#include "PlayerAnswers.h"

#include "PlaybackRules.h"
#include "platform/media/MediaInstances.h"
#include "platform/ui/StatusPanels.h"
#include "platform/ui/WindowContext.h"

#include <algorithm>
#include <cmath>

namespace ravelcue::playback {

namespace {

constexpr int kBusyPanel = 4;

QString busyText(int player) {
    return QStringLiteral("Player %1 busy").arg(player + 1);
}

} // namespace

std::chrono::milliseconds answerWait(double durationMs, int frameCount) {
    if (frameCount < 1 || !(durationMs > 0)) {
        return std::chrono::milliseconds(40);
    }
    const double period = std::ceil(durationMs / frameCount);
    return std::chrono::milliseconds(static_cast<int>(std::clamp(period, 1.0, 100.0)));
}

bool playerAnswers(ui::WindowContext& context, int player) {
    const media::PlayerInstance& p = context.media.play(player);
    const bool answers =
        p.PlayerAnswers(answerWait(p.PlayerGetDuration(), p.PlayerGetFrameCount()));
    const QString busy = busyText(player);
    if (!answers) {
        context.status.setPanel(kBusyPanel, busy);
    } else if (context.status.panel(kBusyPanel) == busy) {
        context.status.setPanel(kBusyPanel, QString());
    }
    return answers;
}

void showPositionText(ui::WindowContext& context) {
    const int index = indexPlayer(context.state);
    if (!playerAnswers(context, index)) {
        return;
    }
    const media::PlayerInstance& p = context.media.play(index);
    context.status.setPanel(
        5, QString::fromStdString(positionText(p.PlayerGetPos(), p.PlayerGetDuration())));
}

} // namespace ravelcue::playback
