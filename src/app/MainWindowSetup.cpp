// Setup: the dialog opened from the menu, and the one place where settings take effect, for
// start-up and for the dialog's OK alike.

#include "CommandStrip.h"
#include "MainWindow.h"
#include "breakspeed/BreakSpeedPane.h"
#include "core/TextNumbers.h"
#include "platform/media/DeviceCatalog.h"
#include "platform/media/MediaEngine.h"
#include "platform/ui/StatusPopup.h"
#include "setup/SetupDialog.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>

namespace ravelcue::app {

void MainWindow::wireSetup() {
    connect(menus_.mnuSetup, &QAction::triggered, this, &MainWindow::mnuSetup_Click);
}

std::vector<std::string> MainWindow::videoDeviceNames() {
    const media::DeviceCatalog& devices = services_.engine.devices();
    std::vector<std::string> names;
    for (int i = 0; i < devices.VideoDeviceCount(); ++i) {
        names.push_back(devices.VideoDeviceName(i).toStdString());
    }
    return names;
}

void MainWindow::showNotices(const QStringList& notices) {
    if (!notices.isEmpty()) {
        commandStrip_->lblMessageBox()->setText(notices.join(QStringLiteral("\n\n")));
    }
}

void MainWindow::applySettings(const AppSettings& accepted, SettingsFrom from) {
    const AppSettings before = settings_;
    settings_ = accepted;
    setUnitCaptions();
    // What there is to tell goes to lblMessageBox, every line of it.
    QStringList notices;
    if (from == SettingsFrom::StartUp) {
        if (!settings_.AudioSource.empty()) {
            ConnectAudio(settings_.AudioDeviceIndex);
        } else {
            media_.audio->SetAudioDevice(0);
            notices << QStringLiteral(
                "No audio source detected. Select audio source on Setup window");
        }
        // Only camera 0's source decides whether the cameras are looked at at all.
        if (settings_.VideoSource[static_cast<size_t>(state_.SelectedCam)].empty()) {
            notices << QStringLiteral(
                "No video source detected. Select video source on Setup window");
        } else {
            connectEnabledCameras(from, notices);
        }
        showNotices(notices);
        return;
    }
    breakSpeedPane_->txtDistance()->setText(QString::fromStdString(floatText(settings_.Distance)));
    connectEnabledCameras(from, notices);
    showNotices(notices);
    // The microphone chosen is used at once, not from the next start.
    switch (setup::reconnectionAfterSetup(before, settings_).audio) {
    case setup::AudioChange::Reconnect:
        StopAudio();
        ConnectAudio(settings_.AudioDeviceIndex);
        break;
    case setup::AudioChange::Disconnect:
        StopAudio();
        break;
    case setup::AudioChange::Keep:
        break;
    }
}

void MainWindow::mnuSetup_Click() {
    commandStrip_->lblMessageBox()->clear();
    services_.popup.ShowPopup(QStringLiteral("Loading setup information. Please standby..."), 0);
    auto* dialog = new setup::SetupDialog(
        {settings_, services_.store, services_.engine, services_.prompts, services_.popup,
         services_.clock, *help_, [this] { DisConnectCam(4); },
         [this](const AppSettings& accepted) {
             if (!stopped_) {
                 applySettings(accepted, SettingsFrom::Setup);
                 State("Live");
             }
         },
         [this] {
             // A dialog closed by the stop gives nothing back.
             if (stopped_) {
                 return;
             }
             for (int i = 0; i < kCameraCount; ++i) {
                 if (settings_.cameraEnabled(i)) {
                     ConnectCam(i, settings_.VideoDeviceIndex[static_cast<size_t>(i)],
                                state_.LiveRenderMode);
                 }
             }
             State("Live");
         }},
        this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::ApplicationModal);
    dialog->load();
    dialog->show();
}

} // namespace ravelcue::app
