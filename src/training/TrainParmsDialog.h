#pragma once

#include "TargetSearch.h"

#include <QDialog>

class QRadioButton;

namespace ravelcue::ui {
class Prompts;
}

namespace ravelcue::training {

// frmTrainParms: the kind of run to start, with the calibrated colour beside it. OK accepts and
// Cancel (or closing it) rejects; the dialog goes away when closed. UI thread only.
class TrainParmsDialog : public QDialog {
    Q_OBJECT
public:
    TrainParmsDialog(QWidget* parent, const TargetColour& target, ui::Prompts& prompts);

    // lngTrainingType of the option that is on.
    int trainingType() const;

private:
    QRadioButton* vertical_ = nullptr;
};

} // namespace ravelcue::training
