#include "TrainParmsDialog.h"

#include "ColourBox.h"
#include "TargetColourTexts.h"
#include "TrainingRules.h"
#include "platform/ui/Controls.h"
#include "platform/ui/Prompts.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace ravelcue::training {

namespace {

QRadioButton* makeOption(QWidget* parent, int index, const QString& caption,
                         const QString& toolTip) {
    auto* option = new QRadioButton(caption, parent);
    option->setObjectName(ui::indexedName(QStringLiteral("Option2"), index));
    option->setToolTip(toolTip);
    return option;
}

} // namespace

TrainParmsDialog::TrainParmsDialog(QWidget* parent, const TargetColour& target,
                                   ui::Prompts& prompts)
    : QDialog(parent) {
    setObjectName(QStringLiteral("frmTrainParms"));
    setWindowTitle(QStringLiteral("StrokeTraining"));
    setAttribute(Qt::WA_DeleteOnClose);

    auto* colour = new ColourBox(this, QStringLiteral("picTargetColor"),
                                 QStringLiteral("Calibrated Target Color"));
    colour->setColour(targetRgb(target));
    colour->setFixedSize(70, 36);
    connect(colour, &ColourBox::clicked, this, [&prompts, target] {
        prompts.message(targetColourMessage(target), ui::MessageIcon::None, ui::MessageButtons::Ok);
    });

    auto* frame1 = new QGroupBox(QStringLiteral("Select Training Type"), this);
    frame1->setObjectName(QStringLiteral("Frame1"));
    vertical_ = makeOption(frame1, 0, QStringLiteral("Vertical Forearm Training (End View)"),
                           QStringLiteral("Training to establish a vertical arm as viewed from "
                                          "the butt end of the cue stick"));
    QRadioButton* side =
        makeOption(frame1, 1, QStringLiteral("Perpendicular Forearm Training (Side View)"),
                   QStringLiteral("Training to establish a perpendicular arm as viewed from the "
                                  "side of the cue stick"));
    vertical_->setChecked(true);
    auto* options = new QVBoxLayout(frame1);
    options->addWidget(vertical_);
    options->addWidget(side);

    QPushButton* cmdOK = ui::makeDialogButton(this, QStringLiteral("cmdOK"), QStringLiteral("OK"));
    QPushButton* cmdCancel =
        ui::makeDialogButton(this, QStringLiteral("cmdCancel"), QStringLiteral("Cancel"));
    cmdOK->setDefault(true);
    connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);

    auto* colourRow = new QHBoxLayout;
    colourRow->addWidget(colour);
    colourRow->addWidget(ui::makeDialogLabel(this, QStringLiteral("Label4"),
                                             QStringLiteral("Calibrated Target Color")));
    colourRow->addStretch();
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(colourRow);
    layout->addWidget(frame1);
    layout->addLayout(buttons);
}

int TrainParmsDialog::trainingType() const {
    return vertical_->isChecked() ? kVerticalTraining : kPerpendicularTraining;
}

} // namespace ravelcue::training
