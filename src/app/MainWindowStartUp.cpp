// Start-up and the stop: Form_Load in its order, and what it calls.

#include "CommandStrip.h"
#include "MainWindow.h"
#include "breakspeed/BreakSpeedPane.h"
#include "capture/CaptureToolFrame.h"
#include "core/Rounding.h"
#include "core/SettingsStore.h"
#include "core/TextNumbers.h"
#include "platform/media/DeviceCatalog.h"
#include "platform/media/MediaEngine.h"
#include "platform/ui/ListSelection.h"
#include "platform/ui/Prompts.h"
#include "platform/ui/StatusPanels.h"
#include "platform/ui/StatusPopup.h"
#include "playback/RunEditToolFrame.h"
#include "setup/SetupForm.h"
#include "training/TrainingToolFrame.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QRegularExpression>
#include <QScreen>

namespace ravelcue::app {

namespace {
constexpr double kStartWidthTwips = 14600;
constexpr double kStartHeightTwips = 11100;
} // namespace

void MainWindow::Form_Load() {
    // 1-2: constants and the views; option 0 is already set, so no handler runs.
    state_.SelectedCam = 0;
    state_.SelectedPlayer = 0;
    state_.PlayerView = "SinglePlayer";
    state_.CameraView = "SingleCamera";
    state_.LiveRenderMode = "Fast";
    selectCameraOption(0);

    // 3-5: the speed list, the panes, and the live mode (no camera counts as enabled yet).
    runEdit_->fillSpeedList();
    PlacePanes("SingleCamera");
    PlacePanes("SinglePlayer");
    State("Live");

    // 6: the start size, read back as the base of all later layout.
    const WindowMetrics now = metrics();
    resize(roundToInt(now.scale.toPixelsX(kStartWidthTwips)),
           roundToInt(now.scale.toPixelsY(kStartHeightTwips)));
    state_.BaseWidth = roundToInt(now.scale.toTwipsX(width()));
    state_.BaseHeight = roundToInt(now.scale.toTwipsY(height()));
    formResize();

    // 7 has nothing to do here: the microphone has no picture of its own.
    // 8: settings.
    settings_ = LoadSettings(services_.store);
    // A first start: the machine's own camera, when it has one, is camera 1.
    if (auto chosen = setup::chooseFirstCamera(settings_, videoDeviceNames())) {
        settings_ = *chosen;
    }

    // 9: the data folder, made with its two subfolders when missing.
    state_.AppDataDir = services_.paths.dataFolder().toStdString();
    const QDir dataFolder(QString::fromStdString(state_.AppDataDir));
    QDir().mkpath(dataFolder.filePath(QStringLiteral("Videos")));
    QDir().mkpath(dataFolder.filePath(QStringLiteral("Images")));

    // 10-13: the units, the microphone and the cameras, as Setup's OK applies them too.
    applySettings(settings_, SettingsFrom::StartUp);

    // 14-16: the players need no set-up of their own.
    setTitle();
    status_->setPanel(1, QStringLiteral("Live Video"));

    // 17: help lies beside the program and is found by topic when asked for.
    // 18.
    askOrRunUpdateCheck();

    // 19-21: the lists, chosen without running their handlers, and the distance.
    QComboBox* threshold = breakSpeedPane_->cboThreshold();
    threshold->clear();
    threshold->addItems({QStringLiteral("30% (quiet)"), QStringLiteral("40%"),
                         QStringLiteral("50% (normal)"), QStringLiteral("60%"),
                         QStringLiteral("70% (noisey)")});
    ui::SelectListEntry(threshold, 2);
    QComboBox* alarm = trainingFrame_->cboAlarmType();
    alarm->clear();
    alarm->addItems(
        {QStringLiteral("Voice"), QStringLiteral("Beep Only"), QStringLiteral("No Sound")});
    ui::SelectListEntry(alarm, 0);
    if (settings_.EnableDistance == 1) {
        breakSpeedPane_->txtDistance()->setText(
            QString::fromStdString(floatText(settings_.Distance)));
    }

    // 22.
    services_.popup.ShowPopup(QString(), -1);
}

void MainWindow::setUnitCaptions() {
    if (settings_.Units == 0) {
        breakSpeedPane_->lblDistance()->setText(QStringLiteral("Distance(in)"));
        breakSpeedPane_->lblSpeed()->setText(QStringLiteral("Speed(mph)"));
    } else if (settings_.Units == 1) {
        breakSpeedPane_->lblDistance()->setText(QStringLiteral("Distance(cm)"));
        breakSpeedPane_->lblSpeed()->setText(QStringLiteral("Speed(kph)"));
    }
}

void MainWindow::connectEnabledCameras(SettingsFrom from, QStringList& notices) {
    const bool startUp = from == SettingsFrom::StartUp;
    const media::DeviceCatalog& devices = services_.engine.devices();
    for (int i = 0; i < kCameraCount; ++i) {
        const auto k = static_cast<size_t>(i);
        const QString nickname = QString::fromStdString(settings_.CamNickname[k]);
        commandStrip_->optCamSelect(i)->setToolTip(nickname);
        captureFrame_->lblCamName(i)->setText(nickname);
        if (startUp) {
            // The menus take new nicknames only at a start.
            menus_.mnuPlayer[k]->setText(nickname);
            menus_.mnuCamera[k]->setText(nickname);
        }
        const bool enabled = settings_.cameraEnabled(i);
        commandStrip_->optCamSelect(i)->setEnabled(enabled);
        commandStrip_->lblCam(i)->setEnabled(enabled);
        captureFrame_->chkCapture(i)->setEnabled(enabled);
        captureFrame_->lblCamName(i)->setEnabled(enabled);
        captureFrame_->chkCapture(i)->setChecked(enabled);
        menus_.mnuCamera[k]->setEnabled(enabled);
        if (enabled) {
            if (startUp) {
                state_.PlayerEnable[k] = true;
            }
            // Devices are stored by name and index; the index of a camera moves when another
            // is plugged in, so the name decides. A camera that is gone is not replaced by
            // whatever has its index now.
            // Setup stores the name with its position in brackets: "USB Camera(1)".
            QString source = QString::fromStdString(settings_.VideoSource[k]);
            source.remove(QRegularExpression(QStringLiteral("\\(\\d+\\)$")));
            int device = settings_.VideoDeviceIndex[k];
            if (devices.VideoDeviceName(device) != source) {
                device = -1;
                for (int d = 0; d < devices.VideoDeviceCount() && device < 0; ++d) {
                    device = devices.VideoDeviceName(d) == source ? d : -1;
                }
                settings_.VideoDeviceIndex[k] = device;
            }
            if (device < 0) {
                notices << QStringLiteral("Camera %1 (%2): \"%3\" is not connected. Select video "
                                          "source on Setup window")
                               .arg(i + 1)
                               .arg(nickname, source);
            }
            ConnectCam(i, device, state_.LiveRenderMode);
        }
    }
}

void MainWindow::ConnectAudio(int deviceIndex) {
    media::AudioInstance& audio = *media_.audio;
    audio.SetAudioDevice(deviceIndex);
    if (!audio.SetConnected(true)) {
        services_.prompts.message(QStringLiteral("Error while connecting to audio source!"),
                                  ui::MessageIcon::Critical);
        return;
    }
    audio.SetCaptureFile(QString::fromStdString(state_.AppDataDir) +
                         QStringLiteral("/breakspeed.wav"));
}

void MainWindow::StopPlayers() {
    // Ends each player's decoding before the cameras' and the microphone's threads go.
    for (int i = 0; i < kCameraCount; ++i) {
        media_.play(i).PlayerClose();
    }
}

void MainWindow::StopAudio() {
    media_.audio->SetConnected(false);
}

void MainWindow::askOrRunUpdateCheck() {
    const std::optional<std::string> stored =
        RegistryReadOptional(services_.store, kCheckForUpdateSetting);
    if (!stored) {
        const ui::MessageAnswer answer = services_.prompts.message(
            QStringLiteral("Do you want Ravelcue to check for updates at startup? (recommended)"),
            ui::MessageIcon::Question, ui::MessageButtons::YesNo);
        if (answer == ui::MessageAnswer::Yes) {
            RegistryWrite(services_.store, kCheckForUpdateSetting, "1");
            runSilentUpdateCheck();
        } else {
            RegistryWrite(services_.store, kCheckForUpdateSetting, "0");
        }
    } else if (*stored == "1") {
        runSilentUpdateCheck();
    }
}

} // namespace ravelcue::app
