#include "Application.h"

#include "MainWindow.h"
#include "core/ToneBus.h"
#include "platform/media/ffmpeg/FfmpegEngine.h"
#include "platform/settings/QSettingsStore.h"
#include "platform/ui/Clock.h"
#include "platform/ui/Desktop.h"
#include "platform/ui/QtPrompts.h"
#include "platform/ui/SingleInstance.h"
#include "platform/ui/StatusPopup.h"
#include "platform/ui/StopSignals.h"

#include <QApplication>
#include <QDir>
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

QString lockFolder() {
    const QString runtime = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    return runtime.isEmpty() ? QDir::tempPath() : runtime;
}

} // namespace

int runRavelcue(int& argc, char** argv, const RunOptions& options) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Ravelcue"));
    QApplication::setOrganizationName(QStringLiteral("Ravelcue"));

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
    media::ffmpeg::FfmpegEngine engine(tones);
    QSettingsStore store;
    const AppPaths paths{commonDataFolder(), QCoreApplication::applicationDirPath()};
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
    if (options.shown) {
        QTimer::singleShot(0, &window, [&window, &options] { options.shown(window); });
    }
    return QApplication::exec();
}

} // namespace ravelcue::app
