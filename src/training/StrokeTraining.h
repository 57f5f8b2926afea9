#pragma once

#include <QObject>
#include <QString>

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

class Calibration;
class TrainingRun;
class TrainingToolFrame;

// The training pane's handlers: the calibration and the run on the tool frame's controls, given
// what they draw on and sound through. UI thread only.
class StrokeTraining : public QObject {
    Q_OBJECT
public:
    // The spoken commands are read from the folder Sounds in programFolder.
    StrokeTraining(ui::WindowContext& context, TrainingToolFrame& frame,
                   markups::CameraMarkers& markers, sound::SoundOutput& sound,
                   const QString& programFolder);

    Calibration& calibration() { return *calibration_; }
    TrainingRun& run() { return *run_; }

    // The window left the training pane: a count or a run going on ends cleanly.
    void paneLeft();

private:
    Calibration* calibration_;
    TrainingRun* run_;
};

} // namespace ravelcue::training
