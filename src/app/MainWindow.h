#pragma once

#include "MainMenus.h"
#include "core/AppSettings.h"
#include "core/AppState.h"
#include "core/ModeMachine.h"
#include "core/PaneLayout.h"
#include "core/Version.h"
#include "platform/media/MediaInstances.h"
#include "platform/ui/WindowContext.h"

#include <memory>
#include <string>
#include <vector>

#include <QHash>
#include <QMainWindow>
#include <QString>
#include <QStringList>

namespace ravelcue {
class SettingsStore;
class ToneBus;
namespace media {
class MediaEngine;
}
namespace ui {
class CancelKey;
class Clock;
class Desktop;
class HelpWindow;
class Prompts;
class StatusPanels;
class StatusPopup;
} // namespace ui
namespace capture {
class CaptureToolFrame;
class FileSetCapture;
class LiveView;
} // namespace capture
namespace breakspeed {
class BreakSpeedPane;
}
namespace sound {
class SoundOutput;
}
namespace training {
class StrokeTraining;
class TrainingToolFrame;
} // namespace training
namespace playback {
class PlaybackController;
class PlayerPanes;
class RunEditToolFrame;
} // namespace playback
namespace markups {
class CameraMarkers;
class MarkerStore;
} // namespace markups
namespace utilities {
class UtilityCommands;
}
} // namespace ravelcue

namespace ravelcue::app {

class CommandStrip;

// Where the program finds and keeps its files.
struct AppPaths {
    // The machine's shared application data folder; "Ravelcue" is added to it.
    QString commonDataFolder;
    // The folder of the program file: help topics and spoken commands lie beside it.
    QString programFolder;

    // The program's data folder: recordings, images, and what it keeps for itself.
    QString dataFolder() const { return commonDataFolder + QStringLiteral("/Ravelcue"); }
};

// What the main window is built from; it owns none of it.
struct MainWindowServices {
    SettingsStore& store;
    media::MediaEngine& engine;
    ui::Prompts& prompts;
    ui::StatusPopup& popup;
    const ui::Clock& clock;
    ToneBus& tones;
    AppPaths paths;
    // The user's browser, mail program and file manager.
    ui::Desktop& desktop;
    // The folder holding app.txt and the update package.
    QString downloadUrl = QString::fromLatin1(kDownloadUrl);
};

// frmMain: the one window of the program. It builds every pane and wires them, switches modes
// through State, lays out its panes, and runs start-up (Form_Load) and the stop (ShutDown).
// UI thread only.
class MainWindow final : public QMainWindow, private ModeHost {
    Q_OBJECT
public:
    explicit MainWindow(const MainWindowServices& services, QWidget* parent = nullptr);
    ~MainWindow() override;

    // Start-up in its order; the caller shows the window afterwards.
    void Form_Load();
    // Stops cameras, players and the microphone, closes every other window and ends the run.
    // Only the first call does anything.
    void ShutDown();

    void State(std::string_view word) { mode_.State(word); }
    void UpdateView() { mode_.UpdateView(); }
    void PlacePanes(std::string_view view) { ravelcue::PlacePanes(geometry_, view); }
    void Form_Resize() { formResize(); }

    void ConnectCam(int camera, int deviceIndex, std::string_view captureMode);
    void DisConnectCam(int camera);
    void ConnectAudio(int deviceIndex);
    void StopPlayers();
    void StopAudio();

    AppState& state() { return state_; }
    AppSettings& settings() { return settings_; }
    const PaneGeometry& geometry() const { return geometry_; }
    media::MediaInstances& media() { return media_; }
    // A control or menu entry by its object name, or null.
    QObject* control(const QString& name);

signals:
    // ShutDown has stopped everything; the process may end.
    void stopped();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    // ModeHost: what the mode machine asks of the window.
    // Asserts in debug builds that the window has a control of that name.
    QObject* modeControl(std::string_view name);
    void setControlEnabled(std::string_view control, bool enabled) override;
    void setControlVisible(std::string_view control, bool visible) override;
    void selectCameraOption(int index) override;
    void resetSpeedList() override;
    void setTitle() override;
    void connectCam(int camera, int deviceIndex, std::string_view renderMode) override;
    void closePlayer(int player) override;
    void formResize() override;

    void buildPanes();
    // Opening, transport, timeline and stills: MainWindowPlayback.cpp.
    void buildPlayback();
    void wireCommands();
    void applyGeometry();
    WindowMetrics metrics() const;
    void showPopupMenu(const QPoint& globalPosition);

    void cmdShowLive_Click();
    void cmdTraining_Click();
    void cmdBreakSpeed_Click();
    void cmdDeleteFiles_Click();

    // Start-up steps that need more than a line.
    enum class SettingsFrom { StartUp, Setup };
    // The units, the microphone and the camera rows of the settings in force, from start-up or
    // from Setup's OK.
    void applySettings(const AppSettings& accepted, SettingsFrom from);
    // Adds a line to `notices` for each enabled camera whose device is missing.
    void connectEnabledCameras(SettingsFrom from, QStringList& notices);
    void showNotices(const QStringList& notices);
    std::vector<std::string> videoDeviceNames();
    void askOrRunUpdateCheck();
    void runSilentUpdateCheck();
    void setUnitCaptions();

    // Delete Files, the update check, help and About.
    void wireUtilities();
    // Setup: MainWindowSetup.cpp.
    void wireSetup();
    void mnuSetup_Click();

    MainWindowServices services_;
    AppState state_;
    AppSettings settings_;
    PaneGeometry geometry_;
    ModeMachine mode_;
    media::MediaInstances media_;
    ui::StatusPanels* status_ = nullptr;
    ui::CancelKey* cancelKey_ = nullptr;
    ui::WindowContext context_;
    MainMenus menus_;
    std::unique_ptr<sound::SoundOutput> sound_;
    QWidget* client_ = nullptr;
    CommandStrip* commandStrip_ = nullptr;
    capture::LiveView* liveView_ = nullptr;
    capture::CaptureToolFrame* captureFrame_ = nullptr;
    capture::FileSetCapture* fileSetCapture_ = nullptr;
    breakspeed::BreakSpeedPane* breakSpeedPane_ = nullptr;
    training::TrainingToolFrame* trainingFrame_ = nullptr;
    std::unique_ptr<markups::CameraMarkers> cameraMarkers_;
    training::StrokeTraining* training_ = nullptr;
    playback::PlayerPanes* playerPanes_ = nullptr;
    playback::RunEditToolFrame* runEdit_ = nullptr;
    std::unique_ptr<markups::MarkerStore> markers_;
    playback::PlaybackController* playback_ = nullptr;
    std::unique_ptr<ui::HelpWindow> help_;
    utilities::UtilityCommands* utilities_ = nullptr;
    QHash<QString, QObject*> controls_;
    bool stopped_ = false;
};

} // namespace ravelcue::app
