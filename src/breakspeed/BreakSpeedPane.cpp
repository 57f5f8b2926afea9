#include "BreakSpeedPane.h"

#include "BreakSpeedLogDialog.h"
#include "WaveformBox.h"
#include "core/AppSettings.h"
#include "core/AppState.h"
#include "core/ModeMachine.h"
#include "core/NumberFormat.h"
#include "core/PaneLayout.h"
#include "core/Rounding.h"
#include "core/TextNumbers.h"
#include "platform/media/AudioInstance.h"
#include "platform/media/MediaInstances.h"
#include "platform/sound/SoundOutput.h"
#include "platform/ui/CancelKey.h"
#include "platform/ui/Clock.h"
#include "platform/ui/Controls.h"
#include "platform/ui/Prompts.h"
#include "platform/ui/StatusPanels.h"
#include "platform/ui/WindowContext.h"

#include <QApplication>
#include <QComboBox>
#include <QFont>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

namespace ravelcue::breakspeed {

namespace {

const QString kStartCaption = QStringLiteral("Start Capture");
const QString kStopCaption = QStringLiteral("Stop Capture");
const QString kDarkCaption = QStringLiteral(" "); // the dark half of the blink

QLineEdit* fieldUnder(QFrame* frame, const QString& name, const QString& labelName,
                      const QString& caption, const QString& toolTip, int left, int width) {
    ui::makeLabel(frame, labelName, caption, QRect(left, 4, width + 20, 18));
    return ui::makeTextBox(frame, name, toolTip, QRect(left, 24, width, 26));
}

QColor vbColour(std::uint32_t colour) {
    return QColor(static_cast<int>(colour & 0xFF), static_cast<int>((colour >> 8) & 0xFF),
                  static_cast<int>((colour >> 16) & 0xFF));
}

QRgb vbRgb(std::uint32_t colour) {
    return vbColour(colour).rgb();
}

void setTextColour(QWidget* widget, QPalette::ColorRole role, const QColor& colour) {
    QPalette palette = widget->palette();
    palette.setColor(role, colour);
    widget->setPalette(palette);
}

// The calibration distances: with the ball's diameter taken off they leave 88 in or 138.89 cm,
// so that a delta time of one second reads 5.00.
QString calibrationDistance(int units, int cueball) {
    if (units == 0) {
        return cueball == 0 ? QStringLiteral("88") : cueball == 1 ? QStringLiteral("90.25") : "";
    }
    if (units == 1) {
        return cueball == 0   ? QStringLiteral("138.89")
               : cueball == 1 ? QStringLiteral("144.605")
                              : "";
    }
    return {};
}

} // namespace

BreakSpeedPane::BreakSpeedPane(ui::WindowContext& context, sound::SoundOutput& sound,
                               QWidget* client)
    : QObject(client)
    , context_(context)
    , sound_(sound) {
    picBreakSpeed_ =
        ui::makeFrame(client, QStringLiteral("picBreakSpeed"), QRect(kPaneColumn, 0, 800, 600));
    picBreakSpeed_->hide();
    Picture1_ = new WaveformBox(picBreakSpeed_, QStringLiteral("Picture1"),
                                QStringLiteral("Captured Audio"), QStringLiteral("Shape1"));
    Picture2_ =
        new WaveformBox(picBreakSpeed_, QStringLiteral("Picture2"),
                        QStringLiteral("Audio selected for analysis"), QStringLiteral("Shape2"));
    lblBreakStatus_ = ui::makeLabel(picBreakSpeed_, QStringLiteral("lblBreakStatus"),
                                    QStringLiteral("Breakspeed status"), QRect(4, 296, 792, 22));
    QFont statusFont(QStringLiteral("Arial"));
    statusFont.setBold(true);
    statusFont.setPointSize(10);
    lblBreakStatus_->setFont(statusFont);

    fmBreakSpeedTB_ =
        ui::makeFrame(client, QStringLiteral("fmBreakSpeedTB"), QRect(kPaneColumn, 600, 800, 88));
    fmBreakSpeedTB_->setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
    fmBreakSpeedTB_->hide();
    cmdStartBreakSpeed_ =
        ui::makeButton(fmBreakSpeedTB_, QStringLiteral("cmdStartBreakSpeed"), kStartCaption,
                       QStringLiteral("Start/Stop Break Speed Measurement"), QRect(6, 14, 100, 44));
    cmdCalTone_ =
        ui::makeButton(fmBreakSpeedTB_, QStringLiteral("cmdCalTone"), QStringLiteral("400hz Tone"),
                       QStringLiteral("Play calibration tone"), QRect(112, 14, 84, 44));
    ui::makeLabel(fmBreakSpeedTB_, QStringLiteral("Label2"), QStringLiteral("Threshold"),
                  QRect(204, 4, 110, 18));
    cboThreshold_ =
        ui::makeDropDownList(fmBreakSpeedTB_, QStringLiteral("cboThreshold"),
                             QStringLiteral("Amplitude threshold"), QRect(204, 24, 112, 26));
    txtDistance_ = fieldUnder(fmBreakSpeedTB_, QStringLiteral("txtDistance"),
                              QStringLiteral("lblDistance"), QStringLiteral("Distance(in)"),
                              QStringLiteral("Enter distance traveled"), 324, 80);
    txtDistance_->setText(QStringLiteral("48"));
    lblDistance_ = fmBreakSpeedTB_->findChild<QLabel*>(QStringLiteral("lblDistance"));
    txtDeltaTime_ = fieldUnder(fmBreakSpeedTB_, QStringLiteral("txtDeltaTime"),
                               QStringLiteral("Label10"), QStringLiteral("Delta time(secs)"),
                               QStringLiteral("Time between markers"), 412, 96);
    txtDeltaTime_->setReadOnly(true);
    txtSpeed_ = fieldUnder(fmBreakSpeedTB_, QStringLiteral("txtSpeed"), QStringLiteral("lblSpeed"),
                           QStringLiteral("Speed(mph)"), QStringLiteral("Break speed"), 516, 80);
    txtSpeed_->setReadOnly(true);
    lblSpeed_ = fmBreakSpeedTB_->findChild<QLabel*>(QStringLiteral("lblSpeed"));
    txtEnergy_ = fieldUnder(fmBreakSpeedTB_, QStringLiteral("txtEnergy"), QStringLiteral("Label3"),
                            QStringLiteral("Energy(joules)"),
                            QStringLiteral("Kinetic energy in joules"), 604, 86);
    txtEnergy_->setReadOnly(true);
    cmdBreakSpeedLog_ =
        ui::makeButton(fmBreakSpeedTB_, QStringLiteral("cmdBreakSpeedLog"), QStringLiteral("Save"),
                       QStringLiteral("Click to save  break speed"), QRect(702, 14, 86, 44));
    tmrBlink2_ = ui::makeTimer(client, QStringLiteral("tmrBlink2"), 500, context_.clock);

    connect(cmdStartBreakSpeed_, &QPushButton::clicked, this,
            &BreakSpeedPane::cmdStartBreakSpeed_Click);
    connect(tmrBlink2_, &QTimer::timeout, this, &BreakSpeedPane::tmrBlink2_Timer);
    connect(cmdCalTone_, &QPushButton::clicked, this, &BreakSpeedPane::cmdCalTone_Click);
    connect(cmdBreakSpeedLog_, &QPushButton::clicked, this,
            &BreakSpeedPane::cmdBreakSpeedLog_Click);
    connect(txtDistance_, &QLineEdit::textChanged, this, &BreakSpeedPane::txtDistance_Change);
    if (context_.media.audio) {
        // A recording that ends on its own (full disk) ends the capture; what it holds is read.
        connect(context_.media.audio.get(), &media::AudioInstance::captureFailed, this,
                [this](const QString& reason) {
                    if (cmdStartBreakSpeed_->text() != kStartCaption) {
                        context_.prompts.message(reason, ui::MessageIcon::Exclamation);
                        cmdStartBreakSpeed_Click();
                    }
                });
    }
    // A choice by the user only: filling the list and SelectListEntry measure nothing.
    connect(cboThreshold_, &QComboBox::activated, this, &BreakSpeedPane::cboThreshold_Click);
    connect(Picture1_, &WaveformBox::pressed, this, &BreakSpeedPane::Picture1_MouseDown);
    connect(Picture1_, &WaveformBox::released, this, &BreakSpeedPane::Picture1_MouseUp);
    connect(Picture2_, &WaveformBox::pressed, this, &BreakSpeedPane::Picture2_MouseDown);
    connect(Picture2_, &WaveformBox::released, this, &BreakSpeedPane::Picture2_MouseUp);
}

BreakSpeedLogDialog* BreakSpeedPane::logDialog() const {
    return frmBreakSpeedLog_;
}

void BreakSpeedPane::applyGeometry() {
    const PaneGeometry& g = context_.geometry;
    picBreakSpeed_->setGeometry(g.picBreakSpeed.left, g.picBreakSpeed.top, g.picBreakSpeed.width,
                                g.picBreakSpeed.height);
    Picture1_->setGeometry(g.Picture1.left, g.Picture1.top, g.Picture1.width, g.Picture1.height);
    Picture2_->setGeometry(g.Picture2.left, g.Picture2.top, g.Picture2.width, g.Picture2.height);
    lblBreakStatus_->move(lblBreakStatus_->x(), g.lblBreakStatusTop);
    lblBreakStatus_->resize(g.picBreakSpeed.width - 8, lblBreakStatus_->height());
    fmBreakSpeedTB_->move(g.fmBreakSpeedTB.left, g.fmBreakSpeedTB.top);
}

SpeedSettings BreakSpeedPane::speedSettings() const {
    return {context_.settings.Units, context_.settings.Cueball};
}

QString BreakSpeedPane::dataFile(const char* name) const {
    return QString::fromStdString(context_.state.AppDataDir) + QLatin1Char('/') +
           QLatin1String(name);
}

void BreakSpeedPane::setStatus(const QString& text, std::uint32_t colour) {
    lblBreakStatus_->setText(text);
    setTextColour(lblBreakStatus_, QPalette::WindowText, vbColour(colour));
}

void BreakSpeedPane::apply(const PaneUpdate& update) {
    if (update.status) {
        setStatus(QString::fromStdString(update.status->text), update.status->colour);
    }
    if (update.deltaTime) {
        txtDeltaTime_->setText(QString::fromStdString(*update.deltaTime));
    }
    if (update.speed) {
        txtSpeed_->setText(QString::fromStdString(*update.speed));
    }
    if (update.energy) {
        txtEnergy_->setText(QString::fromStdString(*update.energy));
    }
    if (update.distance != DistanceCheck::NotRead) {
        // Red until the field holds a number again.
        setTextColour(txtDistance_, QPalette::Text,
                      update.distance == DistanceCheck::NotANumber
                          ? QColor(Qt::red)
                          : QApplication::palette(txtDistance_).color(QPalette::Text));
    }
}

void BreakSpeedPane::restoreDistanceAfterCalibration() {
    const QString text = txtDistance_->text();
    const int units = context_.settings.Units;
    const bool calibration =
        (units == 0 && (text == QLatin1String("90.25") || text == QLatin1String("88"))) ||
        (units == 1 && (text == QLatin1String("144.605") || text == QLatin1String("138.89")));
    if (calibration) {
        txtDistance_->setText(QString::fromStdString(floatText(context_.settings.Distance)));
    }
}

void BreakSpeedPane::cmdStartBreakSpeed_Click() {
    const QString caption = cmdStartBreakSpeed_->text();
    media::AudioInstance& audio = *context_.media.audio;
    if (caption == kStartCaption) {
        // Without a microphone there is nothing to wait a minute for.
        if (!audio.Connected()) {
            context_.prompts.message(
                QStringLiteral("No audio source. Select one on the Setup window"),
                ui::MessageIcon::Exclamation);
            return;
        }
        context_.mode.State("StartCaptureAudio");
        Picture1_->Cls();
        Picture2_->Cls();
        setStatus(lblBreakStatus_->text(), kRed);
        txtDeltaTime_->clear();
        txtSpeed_->clear();
        txtEnergy_->clear();
        restoreDistanceAfterCalibration();
        context_.cancelKey.setCancelButton(cmdStartBreakSpeed_); // Escape stops the capture
        tmrBlink2_->start();
        CaptureCountdown_ = 60;
        context_.status.setPanel(1, QStringLiteral("Capturing Audio..."));
        if (const media::MediaError error = audio.StartCapture(); !error.ok()) {
            captureNotStarted(error);
        }
    } else if (caption == kStopCaption || caption == kDarkCaption) {
        cmdStartBreakSpeed_->setText(kStartCaption);
        context_.mode.State("StopCaptureAudio");
        audio.StopCapture();
        context_.cancelKey.setCancelButton(nullptr);
        tmrBlink2_->stop();
        context_.status.setPanel(1, QStringLiteral("Audio Capture Stopped"));
        setStatus(QStringLiteral("Calculating break speed...."), kRed);
        context_.clock.DelaySeconds(1);
        if (LoadAudioFile()) {
            DetectPeaks();
        }
    }
}

void BreakSpeedPane::tmrBlink2_Timer() {
    if (BlinkOn_ == -1) {
        cmdStartBreakSpeed_->setText(kDarkCaption);
        BlinkOn_ = 0;
    } else if (BlinkOn_ == 0) {
        --CaptureCountdown_;
        if (CaptureCountdown_ >= 0) {
            lblBreakStatus_->setText(
                QStringLiteral("Mute speakers during audio capture!!!   Countdown - 00:") +
                QString::fromStdString(Format(CaptureCountdown_, "00")));
            cmdStartBreakSpeed_->setText(kStopCaption);
            BlinkOn_ = -1;
        } else {
            cmdStartBreakSpeed_Click(); // the caption is " " now: this stops the capture
        }
    }
}

void BreakSpeedPane::cmdCalTone_Click() {
    if (!sound_.SoundDeviceExists()) {
        context_.prompts.message(QStringLiteral("Can't play tone!"), ui::MessageIcon::Information);
        return;
    }
    Picture1_->Cls();
    Picture2_->Cls();
    setStatus(QStringLiteral("400hz calibration tone"), kBlack);
    txtDeltaTime_->clear();
    txtSpeed_->clear();
    const QString distance =
        calibrationDistance(context_.settings.Units, context_.settings.Cueball);
    if (!distance.isEmpty()) {
        txtDistance_->setText(distance);
    }
    media::AudioInstance& audio = *context_.media.audio;
    const media::MediaError error = audio.StartCapture();
    sound_.PlayBeep(400, 1000);
    if (!error.ok()) {
        forgetRecording();
        context_.prompts.message(QStringLiteral("Audio capture could not start\n") + error.text,
                                 ui::MessageIcon::Exclamation);
        return;
    }
    context_.clock.DelaySeconds(1);
    audio.StopCapture();
    LoadAudioFile(); // the tone's block is marked by hand
}

void BreakSpeedPane::captureNotStarted(const media::MediaError& error) {
    cmdStartBreakSpeed_->setText(kStartCaption);
    context_.mode.State("StopCaptureAudio");
    context_.cancelKey.setCancelButton(nullptr);
    tmrBlink2_->stop();
    context_.status.setPanel(1, QStringLiteral("Audio Capture Stopped"));
    forgetRecording();
    context_.prompts.message(QStringLiteral("Audio capture could not start\n") + error.text,
                             ui::MessageIcon::Exclamation);
}

void BreakSpeedPane::forgetRecording() {
    // The file on disk is an older recording: nothing here may pass for a new one, and the
    // threshold list leaves it alone until a capture succeeds.
    recordingStale_ = true;
    samples_.clear();
    AudioSelStart_ = AudioSelEnd_ = MarkStart_ = MarkEnd_ = 0;
    Picture1_->Cls();
    Picture2_->Cls();
    txtDeltaTime_->clear();
    txtSpeed_->clear();
    txtEnergy_->clear();
    setStatus(QStringLiteral("No recording to analyse"), kRed);
}

void BreakSpeedPane::cmdBreakSpeedLog_Click() {
    // A speed beside a distance it was not computed from has no place in the log.
    if (!FieldNumber(txtDistance_->text().toStdString())) {
        context_.prompts.message(QStringLiteral("The distance is not a number\nEnter the distance "
                                                "the ball travelled before saving."),
                                 ui::MessageIcon::Exclamation);
        return;
    }
    context_.state.LogSpeedText = txtSpeed_->text().toStdString();
    context_.state.LogEnergyText = txtEnergy_->text().toStdString();
    if (!frmBreakSpeedLog_) {
        frmBreakSpeedLog_ = new BreakSpeedLogDialog(
            picBreakSpeed_->window(), dataFile("BreakSpeedLog.txt"),
            QString::fromStdString(context_.state.LogSpeedText),
            QString::fromStdString(context_.state.LogEnergyText), context_.prompts);
        connect(frmBreakSpeedLog_, &BreakSpeedLogDialog::helpRequested, this,
                &BreakSpeedPane::helpRequested);
    }
    frmBreakSpeedLog_->show();
    frmBreakSpeedLog_->raise();
    frmBreakSpeedLog_->activateWindow();
}

void BreakSpeedPane::txtDistance_Change() {
    apply(SpeedForDistanceChange(txtDistance_->text().toStdString(),
                                 txtDeltaTime_->text().toStdString(), speedSettings()));
}

void BreakSpeedPane::cboThreshold_Click() {
    if (recordingStale_) {
        return;
    }
    if (LoadAudioFile()) {
        DetectPeaks();
    }
}

bool BreakSpeedPane::LoadAudioFile() {
    recordingStale_ = false;
    LoadedAudio loaded = breakspeed::LoadAudioFile(dataFile("breakspeed.wav").toStdString());
    if (loaded.result != LoadResult::Loaded) {
        setStatus(QStringLiteral("No recording to analyse"), kRed);
        return false;
    }
    samples_ = std::move(loaded.samples);
    scaleHeight_ = WaveformScaleHeight(samples_);
    Picture1_->DrawWaveform(samples_, scaleHeight_, 0, static_cast<int>(samples_.size()));
    return true;
}

void BreakSpeedPane::DetectPeaks() {
    const PeakDetection d =
        breakspeed::DetectPeaks(samples_, cboThreshold_->currentIndex(),
                                txtDistance_->text().toStdString(), speedSettings());
    if (d.firstPeak) {
        Picture1_->drawFullHeightLine(*d.firstPeak, vbRgb(kFirstPeakGreen));
    }
    if (d.secondPeak) {
        Picture1_->drawFullHeightLine(*d.secondPeak, vbRgb(kSecondPeakMagenta));
    }
    if (d.selection) {
        AudioSelStart_ = d.selection->start;
        AudioSelEnd_ = d.selection->end;
        Picture2_->DrawWaveform(samples_, scaleHeight_, AudioSelStart_, AudioSelEnd_);
    }
    apply(d.update);
}

void BreakSpeedPane::Picture1_MouseDown(double x) {
    if (AudioSelStart_ != 0) {
        Picture1_->drawFullHeightLine(AudioSelStart_, WaveformBox::kBackground);
        Picture1_->drawFullHeightLine(AudioSelEnd_, WaveformBox::kBackground);
    }
    AudioSelStart_ = roundToInt(x);
    Picture1_->drawFullHeightLine(x, vbRgb(16711680)); // blue
}

void BreakSpeedPane::Picture1_MouseUp(double x) {
    AudioSelEnd_ = roundToInt(x);
    Picture1_->drawFullHeightLine(x, vbRgb(16711680));
    Picture2_->DrawWaveform(samples_, scaleHeight_, AudioSelStart_, AudioSelEnd_);
}

void BreakSpeedPane::Picture2_MouseDown(double x) {
    if (MarkStart_ != 0) {
        Picture2_->drawFullHeightLine(MarkStart_, WaveformBox::kBackground);
        Picture2_->drawFullHeightLine(MarkEnd_, WaveformBox::kBackground);
    }
    MarkStart_ = roundToInt(x);
    Picture2_->drawFullHeightLine(x, vbRgb(kRed));
    txtDeltaTime_->clear();
    txtSpeed_->clear();
}

void BreakSpeedPane::Picture2_MouseUp(double x) {
    MarkEnd_ = roundToInt(x);
    Picture2_->drawFullHeightLine(x, vbRgb(kRed));
    apply(MeasureMarks(MarkStart_, MarkEnd_, txtDistance_->text().toStdString(), speedSettings()));
}

} // namespace ravelcue::breakspeed
