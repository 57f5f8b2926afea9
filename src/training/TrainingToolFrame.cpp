#include "TrainingToolFrame.h"

#include "ColourBox.h"
#include "core/PaneLayout.h"
#include "platform/ui/Controls.h"
#include "platform/ui/WindowContext.h"

#include <QComboBox>
#include <QFont>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

namespace ravelcue::training {

TrainingToolFrame::TrainingToolFrame(ui::WindowContext& context, QWidget* client)
    : QObject(client)
    , context_(context) {
    frame_ =
        ui::makeFrame(client, QStringLiteral("fmTrainingTB"), QRect(kPaneColumn, 600, 800, 88));
    frame_->setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
    frame_->hide();

    cmdCalibrate_ =
        ui::makeButton(frame_, QStringLiteral("cmdCalibrate"), QStringLiteral("Start Calibration"),
                       QStringLiteral("Start Calibrate Target Color"), QRect(8, 18, 130, 48));
    ui::makeLabel(frame_, QStringLiteral("Label4"), QStringLiteral("Calibrated Color"),
                  QRect(146, 6, 110, 18));
    picTargetColor_ =
        new ColourBox(frame_, QStringLiteral("picTargetColor"), QStringLiteral("Target Color"));
    picTargetColor_->setGeometry(160, 28, 70, 36);

    lblAlarm_ =
        ui::makeLabel(frame_, QStringLiteral("lblAlarm"), QString(), QRect(262, 18, 240, 48));
    QFont alarmFont(QStringLiteral("Arial"));
    alarmFont.setBold(true);
    alarmFont.setPointSizeF(14.25);
    lblAlarm_->setFont(alarmFont);
    lblAlarm_->setAlignment(Qt::AlignCenter);

    cmdStartTraining_ =
        ui::makeButton(frame_, QStringLiteral("cmdStartTraining"), QStringLiteral("Start Training"),
                       QStringLiteral("Start/Stop Stroke Training"), QRect(512, 18, 130, 48));
    ui::makeLabel(frame_, QStringLiteral("Label7"), QStringLiteral("Alarm Type"),
                  QRect(654, 6, 120, 18));
    cboAlarmType_ =
        ui::makeDropDownList(frame_, QStringLiteral("cboAlarmType"),
                             QStringLiteral("Selects alarm type"), QRect(654, 28, 130, 28));

    tmrTraining_ = ui::makeTimer(client, QStringLiteral("tmrTraining"), 600, context_.clock);
    tmrBlink3_ = ui::makeTimer(client, QStringLiteral("tmrBlink3"), 500, context_.clock);
    tmrCalibrate_ = ui::makeTimer(client, QStringLiteral("tmrCalibrate"), 250, context_.clock);
    tmrCountDown_ = ui::makeTimer(client, QStringLiteral("tmrCountDown"), 1000, context_.clock);
}

} // namespace ravelcue::training
