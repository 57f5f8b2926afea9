#include "TimelineControl.h"

#include "PlayerAnswers.h"
#include "Timeline.h"
#include "platform/media/MediaInstances.h"
#include "platform/ui/StatusPanels.h"
#include "platform/ui/WindowContext.h"

namespace ravelcue::playback {

Region regionOf(const Timeline& timeline, const AppState& state) {
    return {timeline.SelStart(), timeline.SelLength(), state.RegionActive};
}

void applyRegion(Timeline& timeline, AppState& state, const Region& region) {
    timeline.setSelection(region.SelStart, region.SelLength);
    state.RegionActive = region.RegionActive;
    timeline.setRegionInForce(region.RegionActive);
}

TimelineControl::TimelineControl(ui::WindowContext& context, Timeline& slider)
    : QObject(&slider)
    , context_(context)
    , slider_(slider) {}

void TimelineControl::Slider1_MouseDown(int button, int shift) {
    Region region = regionOf(slider_, context_.state);
    regionPress(region, button, shift, slider_.value());
    applyRegion(slider_, context_.state, region);
}

void TimelineControl::Slider1_MouseMove(int, int shift) {
    Region region = regionOf(slider_, context_.state);
    regionMove(region, shift, slider_.value());
    applyRegion(slider_, context_.state, region);
}

void TimelineControl::Slider1_MouseUp(int, int shift) {
    Region region = regionOf(slider_, context_.state);
    regionRelease(region, shift);
    applyRegion(slider_, context_.state, region);
}

void TimelineControl::Slider1_Scroll() {
    const int value = slider_.value();
    // Position 0 is reached by Rewind, not by the thumb.
    if (value < 1) {
        return;
    }
    for (int i : activePlayers(context_.state)) {
        context_.media.play(i).PlayerSetPos(static_cast<double>(value) * kStepMs);
    }
    slider_.setText(QString::fromStdString(secondsText(value)));
    showPositionText(context_);
}

} // namespace ravelcue::playback
