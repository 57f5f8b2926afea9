#include "Application.h"

#include "MainWindow.h"
#include "ProgramFiles.h"
#include "core/ToneBus.h"
#include "platform/media/ffmpeg/FfmpegEngine.h"
#include "platform/settings/QSettingsStore.h"
#include "platform/ui/Clock.h"
#include "platform/ui/Desktop.h"
#include "platform/ui/QtPrompts.h"
#include "platform/ui/SingleInstance.h"
#include "platform/ui/StatusPopup.h"
#include "platform/ui/StopSignals.h"

#include <cstdio>

#include <QApplication>
#include <QDir>
#include <QIcon>
#include <QStandardPaths>
#include <QTimer>

namespace ravelcue::app {

namespace {

// The machine's application data folder for all its users.
QString commonDataFolder() {
#ifdef Q_OS_WIN
    return QDir::fromNativeSeparators(qEnvironmentVariable("ProgramData"));
#else
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
#endif
}

// Without a display Qt would abort with advice to reinstall it; a person needs the real reason.
// Offscreen and other chosen platforms need none.
bool displayAvailable() {
#if defined(Q_OS_LINUX) || defined(Q_OS_FREEBSD)
    return qEnvironmentVariableIsSet("QT_QPA_PLATFORM") ||
           !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
#else
    return true;
#endif
}

QString lockFolder() {
    const QString runtime = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    return runtime.isEmpty() ? QDir::tempPath() : runtime;
}

} // namespace

int runRavelcue(int& argc, char** argv, const RunOptions& options) {
    if (!displayAvailable()) {
        std::fputs("ravelcue: no display to show the window on (neither DISPLAY nor "
                   "WAYLAND_DISPLAY is set); start it from a desktop session\n",
                   stderr);
        return 1;
    }
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Ravelcue"));
    QApplication::setOrganizationName(QStringLiteral("Ravelcue"));
    // Installed, the desktop matches the window to its menu entry and shows the theme's icon.
    QApplication::setDesktopFileName(QStringLiteral("com.ravelcue.Ravelcue"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("ravelcue")));

    const ui::Clock clock;
    ui::QtPrompts prompts;

    ui::SingleInstance single(ui::SingleInstance::defaultKey(), lockFolder());
    if (!single.claim()) {
        prompts.message(QStringLiteral("Ravelcue is already running!"),
                        ui::MessageIcon::Information, ui::MessageButtons::Ok);
        single.askRunningToRaise();
        return 0;
    }

    ui::StatusPopup popup(clock);
    popup.ShowPopup(QStringLiteral("Loading Ravelcue. Please standby...."), 0);

    ToneBus tones;
    const AppPaths paths{commonDataFolder(), programFolder(QCoreApplication::applicationDirPath())};
    media::ffmpeg::FfmpegEngineOptions engineOptions;
    // Frame indexes of the videos opened, so that one opened again is exact at once.
    engineOptions.frameIndexFolder = paths.dataFolder() + QStringLiteral("/Cache");
    media::ffmpeg::FfmpegEngine engine(tones, engineOptions);
    QSettingsStore store;
    ui::SystemDesktop desktop;

    MainWindow window({store, engine, prompts, popup, clock, tones, paths, desktop});
    prompts.setOwner(&window);
    QObject::connect(&single, &ui::SingleInstance::raiseRequested, &window, [&window] {
        window.showNormal();
        window.raise();
        window.activateWindow();
    });
    QObject::connect(&window, &MainWindow::stopped, &application, &QApplication::quit,
                     Qt::QueuedConnection);
    // A shutdown, a logout or Ctrl+C ends the run as Exit does: recordings closed, settings kept.
    const ui::StopSignals stopSignals;
    QObject::connect(&stopSignals, &ui::StopSignals::stopRequested, &window, &MainWindow::ShutDown);

    window.Form_Load();
    window.show();
    reportProgramFiles(paths.programFolder);
    if (options.shown) {
        QTimer::singleShot(0, &window, [&window, &options] { options.shown(window); });
    }
    return QApplication::exec();
}

} // namespace ravelcue::app
