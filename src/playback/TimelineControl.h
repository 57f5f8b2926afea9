#pragma once

#include "PlaybackRules.h"

#include <QObject>

namespace ravelcue::ui {
struct WindowContext;
}

namespace ravelcue::playback {

class Timeline;

// The region as the timeline draws it and the window obeys it.
Region regionOf(const Timeline& timeline, const AppState& state);
void applyRegion(Timeline& timeline, AppState& state, const Region& region);

// The handlers of Slider1: seeking by the thumb, and drawing, putting in force and clearing the
// region with Shift and the right button. UI thread only.
class TimelineControl : public QObject {
    Q_OBJECT
public:
    TimelineControl(ui::WindowContext& context, Timeline& slider);

    void Slider1_MouseDown(int button, int shift);
    void Slider1_MouseMove(int button, int shift);
    void Slider1_MouseUp(int button, int shift);
    // The user moved the thumb: every active player goes to its time.
    void Slider1_Scroll();

private:
    ui::WindowContext& context_;
    Timeline& slider_;
};

} // namespace ravelcue::playback
