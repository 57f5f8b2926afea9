#pragma once

#include "TargetSearch.h"

#include <QColor>
#include <QString>

namespace ravelcue::training {

// The calibrated colour as picTargetColor shows it.
QColor targetRgb(const TargetColour& target);
// picTargetColor's tool tip while a calibration counts.
QString targetHslToolTip(const TargetColour& target);
// The message a click on picTargetColor shows, in the main window and in frmTrainParms.
QString targetColourMessage(const TargetColour& target);

} // namespace ravelcue::training
