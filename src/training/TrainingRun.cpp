#include "TrainingRun.h"

#include "Calibration.h"
#include "TrainParmsDialog.h"
#include "TrainingToolFrame.h"
#include "core/AppSettings.h"
#include "core/AppState.h"
#include "core/ModeMachine.h"
#include "markups/CameraMarkers.h"
#include "platform/media/MediaInstances.h"
#include "platform/sound/SoundOutput.h"
#include "platform/ui/Prompts.h"
#include "platform/ui/StatusPanels.h"
#include "platform/ui/WindowContext.h"

#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QPalette>
#include <QPushButton>
#include <QTimer>

namespace ravelcue::training {

namespace {

const QString kStartCaption = QStringLiteral("Start Training");
const QString kStopCaption = QStringLiteral("Stop Training");
const QString kBlankCaption = QStringLiteral(" ");
constexpr int kGoodBeepHz = 500;
constexpr int kGoodBeepMs = 150;

QColor colourOf(std::int32_t number) {
    return {number & 0xFF, (number >> 8) & 0xFF, (number >> 16) & 0xFF};
}

} // namespace

TrainingRun::TrainingRun(ui::WindowContext& context, TrainingToolFrame& frame,
                         const Calibration& calibration, markups::CameraMarkers& markers,
                         sound::SoundOutput& sound, QString soundsFolder)
    : QObject(frame.frame())
    , context_(context)
    , frame_(frame)
    , calibration_(calibration)
    , markers_(markers)
    , sound_(sound)
    , soundsFolder_(std::move(soundsFolder)) {
    connect(frame_.cmdStartTraining(), &QPushButton::clicked, this,
            &TrainingRun::cmdStartTraining_Click);
    connect(frame_.tmrTraining(), &QTimer::timeout, this, &TrainingRun::tmrTraining_Timer);
    connect(frame_.tmrBlink3(), &QTimer::timeout, this, &TrainingRun::tmrBlink3_Timer);
}

void TrainingRun::cmdStartTraining_Click() {
    const QString caption = frame_.cmdStartTraining()->text();
    if (caption == kStartCaption) {
        if (!calibration_.target().calibrated()) {
            context_.prompts.message(
                QStringLiteral("You need to Calibrate the Target Color before start of training."),
                ui::MessageIcon::Information, ui::MessageButtons::Ok);
            return;
        }
        context_.mode.State("StartTraining");
        frame_.cmdCalibrate()->setEnabled(false);
        frame_.cmdStartTraining()->setText(kStopCaption);
        frmTrainParms_ =
            new TrainParmsDialog(frame_.frame()->window(), calibration_.target(), context_.prompts);
        connect(frmTrainParms_, &QDialog::accepted, this, &TrainingRun::frmTrainParms_OK);
        connect(frmTrainParms_, &QDialog::rejected, this, &TrainingRun::frmTrainParms_Cancel);
        frmTrainParms_->open();
    } else if (caption == kStopCaption || caption == kBlankCaption) {
        context_.mode.State("StopTraining");
        endRun();
    }
}

void TrainingRun::frmTrainParms_OK() {
    lngTrainingType = frmTrainParms_->trainingType();
    context_.status.setPanel(2, lngTrainingType == kVerticalTraining
                                    ? QStringLiteral("Vertical End Training")
                                    : QStringLiteral("Perpendicular Side Training"));
    cameraAtStart_ = context_.media.cam(context_.state.SelectedCam).Connected();
    frame_.tmrTraining()->start();
    frame_.tmrBlink3()->start();
}

void TrainingRun::frmTrainParms_Cancel() {
    context_.mode.State("StopTraining");
    frame_.cmdCalibrate()->setEnabled(true);
    frame_.cmdStartTraining()->setText(kStartCaption);
}

void TrainingRun::endRun() {
    frame_.cmdCalibrate()->setEnabled(true);
    frame_.cmdStartTraining()->setText(kStartCaption);
    frame_.tmrTraining()->stop();
    markers_.clearCamOverlay(context_.state.SelectedCam);
    frame_.tmrBlink3()->stop();
    context_.status.setPanel(2, QString());
    frame_.lblAlarm()->clear();
}

void TrainingRun::paneLeft() {
    if (frmTrainParms_) {
        // Not a Cancel: the new mode's state word stands.
        frmTrainParms_->disconnect(this);
        frmTrainParms_->close();
    }
    if (frame_.cmdStartTraining()->text() != kStartCaption) {
        endRun();
    }
}

void TrainingRun::tmrBlink3_Timer() {
    if (BlinkOn3_) {
        frame_.cmdStartTraining()->setText(kBlankCaption);
        BlinkOn3_ = false;
    } else {
        frame_.cmdStartTraining()->setText(kStopCaption);
        BlinkOn3_ = true;
    }
}

void TrainingRun::tmrTraining_Timer() {
    const int cam = context_.state.SelectedCam;
    media::CaptureInstance& camera = context_.media.cam(cam);
    if (cameraAtStart_ && !camera.Connected()) {
        cameraLost();
        return;
    }
    markers_.clearCamOverlay(cam);
    frame_.lblAlarm()->clear();
    const QByteArray bytes = camera.FrameBytes();
    const LiveFrameView frame(
        {reinterpret_cast<const unsigned char*>(bytes.constData()), size_t(bytes.size())});
    const auto alarmType = static_cast<AlarmType>(frame_.cboAlarmType()->currentIndex());
    const TickOutcome tick =
        TrainingTick(frame, calibration_.target(), lngTrainingType, alarmType, kPiValue);
    for (const Mark& mark : tick.marks) {
        markers_.DrawMarker(camera, markers_.camOverlay(cam), true,
                            {mark.shape, mark.x1, mark.y1, mark.x2, mark.y2});
    }
    if (tick.alarm.text.empty()) {
        return;
    }
    sound(tick.alarm);
    QLabel* label = frame_.lblAlarm();
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, colourOf(tick.alarm.colour));
    label->setPalette(palette);
    label->setText(QString::fromStdString(tick.alarm.text));
}

void TrainingRun::sound(const Alarm& alarm) {
    if (alarm.sound == AlarmSound::DoubleBeep) {
        sound_.PlayBeep(kGoodBeepHz, kGoodBeepMs);
        sound_.PlayBeep(kGoodBeepHz, kGoodBeepMs);
    } else if (const char* file = SoundFileName(alarm.sound)) {
        // A missing file or no sound output is silence; the text says it all the same.
        sound_.PlayWaveFile(QDir(soundsFolder_).filePath(QString::fromLatin1(file)));
    }
}

void TrainingRun::cameraLost() {
    context_.mode.State("StopTraining");
    endRun();
    const int cam = context_.state.SelectedCam;
    context_.prompts.message(
        QStringLiteral("Camera %1 (%2) stopped sending pictures. Stroke training has stopped.")
            .arg(cam + 1)
            .arg(QString::fromStdString(context_.settings.CamNickname[static_cast<size_t>(cam)])),
        ui::MessageIcon::Exclamation, ui::MessageButtons::Ok);
}

} // namespace ravelcue::training
