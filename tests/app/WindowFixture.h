#pragma once

#include "app/MainWindow.h"
#include "core/SettingsStore.h"
#include "core/ToneBus.h"
#include "platform/ui/Clock.h"
#include "platform/ui/StatusPopup.h"
#include "support/QtPrinters.h"
#include "support/RecordingDesktop.h"
#include "support/RecordingEngine.h"
#include "support/ScriptedPrompts.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <memory>

#include <QAbstractButton>
#include <QAction>
#include <QLabel>
#include <QTest>

namespace ravelcue::test {

// Builds the fixture on the FFmpeg engine with its demo devices.
struct DemoDevices {
    std::uint64_t microphoneSeed = 1;
};

// A main window on temporary folders, an in-memory settings store, scripted prompts and a clock
// running fifty times fast. The engine is a RecordingEngine unless another is given.
class WindowFixture {
public:
    explicit WindowFixture(media::MediaEngine* engine = nullptr);
    // The real engine: demo cameras and the demo microphone, hearing the fixture's tones.
    explicit WindowFixture(DemoDevices demo);
    ~WindowFixture();

    // Stores the answer to the first-run question, so that start-up asks nothing.
    void answeredUpdateQuestion(const char* answer = "0");
    // Stores a source and enables the camera; by default the demo camera of its number.
    void enableCamera(int camera, const std::string& source = {});
    // Stores cameras 0..3 on Demo Camera 1..4, the first `enabledCameras` of them enabled, and
    // the Demo Microphone (the real engine's devices on a machine without hardware).
    void enableDemoDevices(int enabledCameras = 4);
    // Waits, serving events, until the picture shows a frame; false after 10 s.
    static bool waitForPicture(media::VideoView* view);

    // Builds the window, runs start-up and shows it.
    app::MainWindow& start();

    app::MainWindow& window() { return *window_; }
    template <typename T = QObject>
    T* find(const QString& name) {
        return qobject_cast<T*>(window_->control(name));
    }
    // Clicks a button, or triggers a menu entry or toolbar button, by its object name.
    void click(const QString& name);
    QString panel(int n);
    // Fires a timer of the window once, as if its interval had passed.
    void tick(const QString& timerName);
    QString text(const QString& labelName) { return find<QLabel>(labelName)->text(); }

    MemorySettingsStore store;
    RecordingEngine recorder;
    ScriptedPrompts prompts;
    ui::Clock clock{50.0};
    ui::StatusPopup popup{clock};
    ToneBus tones;
    TempFolder data;
    TempFolder program;
    RecordingDesktop desktop;
    // Where the update check reads app.txt. Empty, the read fails at once without touching the
    // network; tests of the check set a local server's address.
    QString downloadUrl;

private:
    std::unique_ptr<media::MediaEngine> ownEngine_;
    media::MediaEngine* engine_;
    std::unique_ptr<app::MainWindow> window_;
};

} // namespace ravelcue::test
