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

#include <memory>

#include <QAbstractButton>
#include <QAction>
#include <QLabel>
#include <QTest>

namespace ravelcue::test {

// A main window on temporary folders, an in-memory settings store, scripted prompts and a clock
// running fifty times fast. The engine is a RecordingEngine unless another is given.
class WindowFixture {
public:
    explicit WindowFixture(media::MediaEngine* engine = nullptr);
    ~WindowFixture();

    // Stores the answer to the first-run question, so that start-up asks nothing.
    void answeredUpdateQuestion(const char* answer = "0");
    // Stores a source and enables the camera.
    void enableCamera(int camera, const std::string& source = "Demo Camera");

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
    media::MediaEngine* engine_;
    std::unique_ptr<app::MainWindow> window_;
};

} // namespace ravelcue::test
