#pragma once

#include "TargetSearch.h"

#include <QObject>

namespace ravelcue {
namespace ui {
struct WindowContext;
}
namespace markups {
class CameraMarkers;
}
namespace sound {
class SoundOutput;
}
} // namespace ravelcue

namespace ravelcue::training {

class TrainingToolFrame;

// Learning the target colour: the user holds it into a small green square on the selected
// camera's picture through a count of beeps, and every 250 ms the square's inside is sampled
// afresh; the last sample before the double beep is kept. The colour lives as long as the window.
// UI thread only.
class Calibration : public QObject {
    Q_OBJECT
public:
    Calibration(ui::WindowContext& context, TrainingToolFrame& frame,
                markups::CameraMarkers& markers, sound::SoundOutput& sound);

    // Hthresh, Sthresh, Lthresh, Rthresh, Gthresh, Bthresh.
    const TargetColour& target() const { return target_; }
    bool counting() const;

    void cmdCalibrate_Click();
    void tmrCalibrate_Timer();
    void tmrCountDown_Timer();
    void picTargetColor_Click();

    // The pane was left during a count: it ends at once, without its double beep, keeping the
    // last sample taken.
    void abandon();

private:
    // Timers off, buttons and tool tip back, the square wiped.
    void finish();

    ui::WindowContext& context_;
    TrainingToolFrame& frame_;
    markups::CameraMarkers& markers_;
    sound::SoundOutput& sound_;
    TargetColour target_;
    int BeepCount_ = 0;
};

} // namespace ravelcue::training
