#pragma once

#include "SetupForm.h"

#include <array>
#include <functional>
#include <memory>

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QTimer;

namespace ravelcue {
class SettingsStore;
namespace media {
class AudioInstance;
class CaptureInstance;
class MediaEngine;
} // namespace media
namespace ui {
class Clock;
class HelpWindow;
class Prompts;
class StatusPopup;
} // namespace ui
} // namespace ravelcue

namespace ravelcue::setup {

// What the dialog works with. The main window owns all of it and outlives the dialog.
struct SetupServices {
    // The settings in force: the marker width, the default colour and the sizes and rates read
    // back from the devices change here at once, as the user makes them.
    AppSettings& settings;
    SettingsStore& store;
    media::MediaEngine& engine;
    ui::Prompts& prompts;
    ui::StatusPopup& popup;
    const ui::Clock& clock;
    ui::HelpWindow& help;
    // Takes the main window's cameras away while the dialog shows them.
    std::function<void()> takeCameras;
    // OK: the accepted settings, already stored, take effect and the window goes back to "Live".
    std::function<void(const AppSettings&)> apply;
    // Cancel or any other close: the cameras come back as they were and the window goes "Live".
    std::function<void()> giveCamerasBack;
};

// frmSetup: cameras with their previews, the compressor, the marker, the microphone and the break
// speed options. Runs capture instances and a microphone of its own. UI thread only.
class SetupDialog final : public QDialog {
    Q_OBJECT
public:
    SetupDialog(SetupServices services, QWidget* owner);
    ~SetupDialog() override;

    // The load in its order; the dialog is shown afterwards, also when the load stopped.
    void load();

    bool SetupLoaded() const { return setupLoaded_; }

    void ConnectPreview(int index, int deviceIndex);
    void DisconnectPreview(int index);
    void ConnectTestAudio(int deviceIndex);
    void StopTestAudio();

    media::CaptureInstance& preview(int index) const;
    media::AudioInstance& testAudio() const { return *audio_; }

public slots:
    // Escape, the title bar's close and Cancel all come here.
    void reject() override;

private:
    void buildVideoFrame();
    QWidget* buildMarkerFrame();
    QWidget* buildAudioFrame();
    QWidget* buildBreakSpeedFrame();
    QWidget* buildMiscFrame();
    void showForm(const SetupLoad& loaded);
    SetupForm readForm() const;
    void showMarkerColor(std::int32_t color);
    void showReadBack(int index);
    void say(const SetupMessage& message);
    void releaseDevices();

    void cboVideoSource_Click();
    void cmdSourceDlg_Click(int index);
    void cmdVideoFormatDlg_Click(int index);
    void cmdVideoCompression_Click();
    void cmdMarkerColor_Click();
    void cboAudioSource_Click();
    void chkTest_Click(bool on);
    void tmrAudioLevel_Timer();
    void txtNickname_Change(int index);
    void cmdOK_Click();

    SetupServices services_;
    std::array<std::unique_ptr<media::CaptureInstance>, kCameraCount> previews_;
    std::unique_ptr<media::AudioInstance> audio_;
    SetupForm loaded_;
    CodecSettings codec_; // as "Codec Settings" left them, stored at OK
    std::int32_t markerColor_ = 65280;
    bool setupLoaded_ = false;
    bool released_ = false;

    std::array<QCheckBox*, kCameraCount> chkCamEnable_{};
    std::array<QComboBox*, kCameraCount> cboVideoSource_{};
    std::array<QLineEdit*, kCameraCount> txtNickname_{};
    std::array<QPushButton*, kCameraCount> cmdSourceDlg_{};
    std::array<QPushButton*, kCameraCount> cmdVideoFormatDlg_{};
    std::array<QLabel*, kCameraCount> lblVidSize_{};
    std::array<QLabel*, kCameraCount> lblFrameRate_{};
    QRadioButton* optEnableAVI_ = nullptr;
    QRadioButton* optEnableWMV_ = nullptr;
    QComboBox* cboAviCodecs_ = nullptr;
    QComboBox* cboWmvProfiles_ = nullptr;
    QPushButton* cmdVideoCompression_ = nullptr;
    QComboBox* cboWidth_ = nullptr;
    QPushButton* cmdMarkerColor_ = nullptr;
    QComboBox* cboAudioSource_ = nullptr;
    QCheckBox* chkTest_ = nullptr;
    QProgressBar* pbAudioLevel_ = nullptr;
    QTimer* tmrAudioLevel_ = nullptr;
    QCheckBox* chkUnits_ = nullptr;
    QCheckBox* chkDistance_ = nullptr;
    QLineEdit* txtDistance_ = nullptr;
    QCheckBox* chkCueball_ = nullptr;
    QCheckBox* chkEnableCheckForUpdate_ = nullptr;
};

} // namespace ravelcue::setup
