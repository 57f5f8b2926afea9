#pragma once

#include "TrainingRules.h"

#include <QObject>
#include <QPointer>
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
class TrainParmsDialog;
class TrainingToolFrame;

// A training run on the selected camera: every 600 ms the targets of the calibrated colour are
// sought in the newest frame, drawn over the picture, and judged by the rule of the run's kind;
// the verdict is spoken, beeped or only shown, as cboAlarmType says at that tick. The start
// button's caption is the run's state. UI thread only.
class TrainingRun : public QObject {
    Q_OBJECT
public:
    // soundsFolder holds the spoken commands (left.wav ...).
    TrainingRun(ui::WindowContext& context, TrainingToolFrame& frame,
                const Calibration& calibration, markups::CameraMarkers& markers,
                sound::SoundOutput& sound, QString soundsFolder);

    // 2 vertical, 3 perpendicular; set at each start.
    int lngTrainingType = 0;

    void cmdStartTraining_Click();
    void tmrTraining_Timer();
    void tmrBlink3_Timer();

    // The pane was left by a mode button: a run (or a choice of one) ends without a state word,
    // so that the new mode keeps its own.
    void paneLeft();

    // frmTrainParms while it is open.
    TrainParmsDialog* parmsDialog() const { return frmTrainParms_; }

private:
    void frmTrainParms_OK();
    void frmTrainParms_Cancel();
    // The end of a run, the stop button's and any other.
    void endRun();
    void sound(const Alarm& alarm);
    void cameraLost();

    ui::WindowContext& context_;
    TrainingToolFrame& frame_;
    const Calibration& calibration_;
    markups::CameraMarkers& markers_;
    sound::SoundOutput& sound_;
    QString soundsFolder_;
    QPointer<TrainParmsDialog> frmTrainParms_;
    bool BlinkOn3_ = false;
    // Whether the camera delivered when the run began, so that losing it can be told apart
    // from never having had one.
    bool cameraAtStart_ = false;
};

} // namespace ravelcue::training
