#include "WindowFixture.h"

#include "core/AppSettings.h"
#include "platform/media/DeviceCatalog.h"
#include "platform/media/VideoView.h"
#include "platform/media/ffmpeg/FfmpegEngine.h"
#include "platform/ui/StatusPanels.h"
#include "support/DemoDeviceSettings.h"

#include <QStatusBar>
#include <QTimer>

#include <gtest/gtest.h>

namespace ravelcue::test {

WindowFixture::WindowFixture(media::MediaEngine* engine)
    : engine_(engine != nullptr ? engine : &recorder) {}

WindowFixture::WindowFixture(DemoDevices demo)
    : engine_(nullptr) {
    media::ffmpeg::FfmpegEngineOptions options;
    options.demoMicrophoneSeed = demo.microphoneSeed;
    options.randomDemoSeed = false;
    ownEngine_ = std::make_unique<media::ffmpeg::FfmpegEngine>(tones, options);
    engine_ = ownEngine_.get();
}

void WindowFixture::enableDemoDevices(int enabledCameras) {
    storeDemoDevices(store, engine_->devices(), enabledCameras);
}

bool WindowFixture::waitForPicture(media::VideoView* view) {
    return QTest::qWaitFor([view] { return !view->pictureSize().isEmpty(); }, 10000);
}

WindowFixture::~WindowFixture() {
    if (window_) {
        window_->ShutDown();
    }
}

void WindowFixture::answeredUpdateQuestion(const char* answer) {
    store.writeText(kCheckForUpdateSetting, answer);
}

void WindowFixture::enableCamera(int camera, const std::string& source) {
    store.writeText(cameraSettingName("Video Source-", camera),
                    source.empty() ? "Demo Camera " + std::to_string(camera + 1) : source);
    store.writeText(cameraSettingName("CamEnable-", camera), "1");
}

app::MainWindow& WindowFixture::start() {
    const app::AppPaths paths{data.path(), program.path()};
    window_ = std::make_unique<app::MainWindow>(app::MainWindowServices{
        store, *engine_, prompts, popup, clock, tones, paths, desktop, downloadUrl});
    window_->Form_Load();
    window_->show();
    QCoreApplication::processEvents();
    return *window_;
}

void WindowFixture::click(const QString& name) {
    QObject* object = window_->control(name);
    if (auto* action = qobject_cast<QAction*>(object)) {
        action->trigger();
    } else if (auto* button = qobject_cast<QAbstractButton*>(object)) {
        QTest::mouseClick(button, Qt::LeftButton);
    } else {
        ADD_FAILURE() << "no clickable control named " << name.toStdString();
    }
    QCoreApplication::processEvents();
}

void WindowFixture::tick(const QString& timerName) {
    auto* timer = window_->findChild<QTimer*>(timerName);
    ASSERT_NE(timer, nullptr) << timerName.toStdString();
    QMetaObject::invokeMethod(timer, "timeout");
    QCoreApplication::processEvents();
}

QString WindowFixture::panel(int n) {
    return window_->findChild<ui::StatusPanels*>()->panel(n);
}

} // namespace ravelcue::test
