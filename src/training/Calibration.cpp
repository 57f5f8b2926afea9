#include "Calibration.h"

#include "ColourBox.h"
#include "TargetColourTexts.h"
#include "TrainingToolFrame.h"
#include "core/AppSettings.h"
#include "core/AppState.h"
#include "core/ModeMachine.h"
#include "markups/CameraMarkers.h"
#include "markups/MarkerStore.h"
#include "platform/media/MediaInstances.h"
#include "platform/sound/SoundOutput.h"
#include "platform/ui/Prompts.h"
#include "platform/ui/WindowContext.h"

#include <QPushButton>
#include <QTimer>

namespace ravelcue::training {

namespace {

constexpr std::int32_t kSquareColour = 65280; // green
constexpr int kRisingBeeps = 5;
constexpr int kFirstBeepHz = 500;
constexpr int kBeepStepHz = 100;
constexpr int kDoubleBeepHz = 1000;
constexpr int kBeepMs = 250;

} // namespace

Calibration::Calibration(ui::WindowContext& context, TrainingToolFrame& frame,
                         markups::CameraMarkers& markers, sound::SoundOutput& sound)
    : QObject(frame.frame())
    , context_(context)
    , frame_(frame)
    , markers_(markers)
    , sound_(sound) {
    connect(frame_.cmdCalibrate(), &QPushButton::clicked, this, &Calibration::cmdCalibrate_Click);
    connect(frame_.tmrCalibrate(), &QTimer::timeout, this, &Calibration::tmrCalibrate_Timer);
    connect(frame_.tmrCountDown(), &QTimer::timeout, this, &Calibration::tmrCountDown_Timer);
    connect(frame_.picTargetColor(), &ColourBox::clicked, this, &Calibration::picTargetColor_Click);
}

bool Calibration::counting() const {
    return frame_.tmrCountDown()->isActive();
}

void Calibration::cmdCalibrate_Click() {
    context_.mode.State("StartCalibrate");
    const ui::MessageAnswer answer = context_.prompts.message(
        QStringLiteral("Place a sample of the color that will be used for the target, in the "
                       "small green square located in the center of the Live Video. You will "
                       "hear 5 increasing frequency beeps then a double beep when the color "
                       "sample is acquired."),
        ui::MessageIcon::None, ui::MessageButtons::OkCancel);
    if (answer != ui::MessageAnswer::Ok) {
        context_.mode.State("StopCalibrate");
        return;
    }
    frame_.cmdStartTraining()->setEnabled(false);
    frame_.cmdCalibrate()->setText(QStringLiteral("Calibrating..."));
    frame_.cmdCalibrate()->setEnabled(false);
    frame_.tmrCalibrate()->start();

    const int cam = context_.state.SelectedCam;
    markers_.clearCamOverlay(cam);
    context_.settings.MarkerColor = kSquareColour;
    markers_.DrawMarker(
        context_.media.cam(cam), markers_.camOverlay(cam), true,
        {markups::ShapeRectangle, kSquareLeft, kSquareTop, kSquareRight, kSquareBottom});
    frame_.tmrCountDown()->start();
}

void Calibration::tmrCalibrate_Timer() {
    const QByteArray bytes = context_.media.cam(context_.state.SelectedCam).FrameBytes();
    const auto frame = LiveFrameView(
        {reinterpret_cast<const unsigned char*>(bytes.constData()), size_t(bytes.size())});
    // Until the camera delivers, there is nothing to sample.
    const std::optional<TargetColour> sample = CalibrationSample(frame);
    if (!sample) {
        return;
    }
    target_ = *sample;
    frame_.picTargetColor()->setColour(targetRgb(target_));
    frame_.picTargetColor()->setToolTip(targetHslToolTip(target_));
}

void Calibration::tmrCountDown_Timer() {
    if (BeepCount_ < kRisingBeeps) {
        sound_.PlayBeep(BeepCount_ * kBeepStepHz + kFirstBeepHz, kBeepMs);
        ++BeepCount_;
        return;
    }
    sound_.PlayBeep(kDoubleBeepHz, kBeepMs);
    sound_.PlayBeep(kDoubleBeepHz, kBeepMs);
    context_.mode.State("StopCalibrate");
    finish();
}

void Calibration::finish() {
    frame_.cmdCalibrate()->setEnabled(true);
    frame_.cmdCalibrate()->setText(QStringLiteral("Start Calibration"));
    frame_.cmdStartTraining()->setEnabled(true);
    frame_.tmrCalibrate()->stop();
    markers_.clearCamOverlay(context_.state.SelectedCam);
    frame_.tmrCountDown()->stop();
    frame_.picTargetColor()->setToolTip(QStringLiteral("Target Color"));
    BeepCount_ = 0;
}

void Calibration::abandon() {
    if (counting()) {
        finish();
    }
}

void Calibration::picTargetColor_Click() {
    context_.prompts.message(targetColourMessage(target_), ui::MessageIcon::None,
                             ui::MessageButtons::Ok);
}

} // namespace ravelcue::training
