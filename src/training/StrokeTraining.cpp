#include "StrokeTraining.h"

#include "Calibration.h"
#include "TrainParmsDialog.h"
#include "TrainingRun.h"
#include "TrainingToolFrame.h"

#include <QDir>
#include <QFrame>

namespace ravelcue::training {

StrokeTraining::StrokeTraining(ui::WindowContext& context, TrainingToolFrame& frame,
                               markups::CameraMarkers& markers, sound::SoundOutput& sound,
                               const QString& programFolder)
    : QObject(frame.frame())
    , calibration_(new Calibration(context, frame, markers, sound))
    , run_(new TrainingRun(context, frame, *calibration_, markers, sound,
                           QDir(programFolder).filePath(QStringLiteral("Sounds")))) {}

void StrokeTraining::paneLeft() {
    calibration_->abandon();
    run_->paneLeft();
}

} // namespace ravelcue::training
