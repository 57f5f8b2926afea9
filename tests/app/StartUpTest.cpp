#include "WindowFixture.h"
#include "core/AppSettings.h"
#include "platform/ui/StatusPopup.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRadioButton>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

TEST(StartUp, FirstRunAsksOnceLeavesTheMessagesAndMakesTheFolders) {
    WindowFixture fixture;
    fixture.prompts.answerNext(ui::MessageAnswer::No);
    fixture.popup.ShowPopup(QStringLiteral("Loading Ravelcue. Please standby...."), 0);
    app::MainWindow& window = fixture.start();

    ASSERT_EQ(fixture.prompts.texts(),
              QStringList{"Do you want Ravelcue to check for updates at startup? (recommended)"});
    EXPECT_EQ(fixture.prompts.shown().front().buttons, ui::MessageButtons::YesNo);
    EXPECT_EQ(fixture.store.values().at("Startup CheckForUpdate Enable"), "0");

    // Both messages stand on the label, neither hiding the other.
    EXPECT_EQ(fixture.text("lblMessageBox"),
              "No audio source detected. Select audio source on Setup window\n\n"
              "No video source detected. Select video source on Setup window");
    EXPECT_EQ(window.state().CurrentState, "Live");
    EXPECT_EQ(window.windowTitle(), "Ravelcue - 1.0.0");
    EXPECT_EQ(fixture.panel(1), "Live Video");
    for (int i = 0; i < 4; ++i) {
        EXPECT_FALSE(
            fixture.find<QRadioButton>(QStringLiteral("optCamSelect_%1").arg(i))->isEnabled());
    }
    EXPECT_TRUE(fixture.find<QRadioButton>("optCamSelect_4")->isEnabled());
    EXPECT_TRUE(fixture.recorder.calls("cam").isEmpty()) << "no camera connects on a first run";

    const QDir data(fixture.data.file("Ravelcue"));
    EXPECT_EQ(QString::fromStdString(window.state().AppDataDir), data.path());
    EXPECT_TRUE(data.exists("Videos"));
    EXPECT_TRUE(data.exists("Images"));

    EXPECT_EQ(fixture.find<QComboBox>("cboThreshold")->currentText(), "50% (normal)");
    EXPECT_EQ(fixture.find<QComboBox>("cboAlarmType")->currentText(), "Voice");
    EXPECT_EQ(fixture.find<QLineEdit>("txtDistance")->text(), "48");

    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    EXPECT_EQ(fixture.popup.window(), nullptr) << "start-up closes its popup";
}

TEST(StartUp, EnabledCamerasConnectInOrderWithTheirSettings) {
    WindowFixture fixture;
    fixture.answeredUpdateQuestion("1");
    fixture.enableCamera(0);
    fixture.enableCamera(2);
    // The index stored beside the name is stale (a camera was plugged in since): the name wins.
    fixture.store.writeText("Video Device Index-2", "5");
    fixture.store.writeText("Video Size-2", "1280x720");
    fixture.store.writeText("Frame Rate-2", "29.97");
    fixture.store.writeText("CamNickname-2", "Side Rail");
    fixture.store.writeText("Video Source-3", "Demo Camera 4");
    fixture.store.writeText("Audio Source", "Demo Microphone");
    fixture.store.writeText("Audio Device Index", "4");
    app::MainWindow& window = fixture.start();

    EXPECT_TRUE(fixture.prompts.shown().empty()) << "a stored answer asks nothing";
    EXPECT_EQ(
        fixture.recorder.calls("cam2."),
        (QStringList{"cam2.SetConnected(0)", "cam2.SetVideoDevice(2)",
                     "cam2.SetCaptureFrameRate(29.97)", "cam2.SetRenderMode(0)",
                     "cam2.SetConnected(1)", "cam2.SetVideoSize(1280,720)", "cam2.SetPreview(1)"}));
    EXPECT_TRUE(fixture.recorder.calls("cam1.").isEmpty());
    EXPECT_TRUE(fixture.recorder.calls("cam3.").isEmpty()) << "a source alone does not connect";
    EXPECT_EQ(window.state().PlayerEnable, (std::array<bool, 4>{true, false, true, false}));

    EXPECT_TRUE(fixture.find<QRadioButton>("optCamSelect_2")->isEnabled());
    EXPECT_FALSE(fixture.find<QRadioButton>("optCamSelect_3")->isEnabled());
    EXPECT_TRUE(fixture.find<QCheckBox>("chkCapture_2")->isChecked());
    EXPECT_FALSE(fixture.find<QCheckBox>("chkCapture_1")->isChecked());
    EXPECT_EQ(fixture.text("lblCamName_2"), "Side Rail");
    EXPECT_EQ(fixture.find<QRadioButton>("optCamSelect_2")->toolTip(), "Side Rail");
    EXPECT_EQ(fixture.find<QAction>("mnuCamera_2")->text(), "Side Rail");
    EXPECT_EQ(fixture.find<QAction>("mnuPlayer_3")->text(), "Cam4") << "every nickname is shown";
    EXPECT_TRUE(fixture.find<QAction>("mnuCamera_2")->isEnabled());
    EXPECT_FALSE(fixture.find<QAction>("mnuCamera_1")->isEnabled());
    EXPECT_EQ(fixture.text("lblMessageBox"), "");

    // The microphone is bound to its device and to breakspeed.wav in the data folder.
    const QString wav = QString::fromStdString(window.state().AppDataDir) + "/breakspeed.wav";
    EXPECT_EQ(fixture.recorder.calls("audio."),
              (QStringList{"audio.SetAudioDevice(4)", "audio.SetConnected(1)",
                           "audio.SetCaptureFile(" + wav + ")"}));
    EXPECT_TRUE(fixture.recorder.calls("player").isEmpty()) << "players need no set-up";
}

TEST(StartUp, OnlyCameraZerosSourceDecidesWhetherCamerasConnect) {
    WindowFixture fixture;
    fixture.answeredUpdateQuestion();
    fixture.enableCamera(1);
    fixture.store.writeText("CamNickname-1", "Left");
    fixture.start();
    EXPECT_TRUE(fixture.recorder.calls("cam").isEmpty());
    EXPECT_EQ(fixture.text("lblCamName_1"), "Cam2") << "captions keep their design text";
    EXPECT_TRUE(fixture.text("lblMessageBox")
                    .endsWith("No video source detected. Select video source on Setup window"));
}

TEST(StartUp, WithoutADisplayOneLineSaysWhy) {
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        environment.remove(name);
    }
    program.setProcessEnvironment(environment);
    program.start(RAVELCUE_PROGRAM, {});
    ASSERT_TRUE(program.waitForFinished(60000));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit) << "no abort";
    EXPECT_EQ(program.exitCode(), 1);
    const QStringList said =
        QString::fromLocal8Bit(program.readAllStandardError()).split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(said.size(), 1) << said.join('|').toStdString();
    EXPECT_TRUE(said[0].startsWith("ravelcue: no display")) << said[0].toStdString();
}

TEST(StartUp, AStoredCameraThatIsGoneIsSaidAndNotReplaced) {
    WindowFixture fixture;
    fixture.answeredUpdateQuestion();
    fixture.enableCamera(0);
    fixture.enableCamera(1, "USB Camera(1)");
    fixture.store.writeText("Video Device Index-1", "1"); // Demo Camera 2 has that index now
    fixture.store.writeText("Audio Source", "Demo Microphone");
    fixture.start();
    EXPECT_EQ(fixture.recorder.calls("cam0.SetVideoDevice"), QStringList{"cam0.SetVideoDevice(0)"});
    EXPECT_EQ(fixture.recorder.calls("cam1.SetVideoDevice"),
              QStringList{"cam1.SetVideoDevice(-1)"});
    EXPECT_EQ(fixture.text("lblMessageBox"), "Camera 2 (Cam2): \"USB Camera\" is not connected. "
                                             "Select video source on Setup window");
}

TEST(StartUp, AFirstStartTakesTheMachinesOwnCameraAsCameraOne) {
    RecordingEngine engine({"Demo Camera 1", "HD Webcam", "Other Webcam"});
    WindowFixture fixture(&engine);
    fixture.answeredUpdateQuestion();
    fixture.start();
    EXPECT_TRUE(engine.calls("cam0.").contains("cam0.SetVideoDevice(1)"));
    EXPECT_TRUE(engine.calls("cam1.").isEmpty());
    EXPECT_TRUE(fixture.find<QRadioButton>("optCamSelect_0")->isEnabled());
    EXPECT_EQ(fixture.text("lblMessageBox"),
              "No audio source detected. Select audio source on Setup window");
    EXPECT_FALSE(fixture.store.readText("Video Source-0")) << "stored only by Setup's OK";
}

TEST(StartUp, StoredDistanceAndUnitsReachTheBreakSpeedFields) {
    WindowFixture fixture;
    fixture.answeredUpdateQuestion("2");
    fixture.store.writeText("Units", "1");
    fixture.store.writeText("Distance", "138.89");
    fixture.start();
    EXPECT_TRUE(fixture.prompts.shown().empty()) << "any answer but 1 or none asks nothing";
    EXPECT_EQ(fixture.text("lblDistance"), "Distance(cm)");
    EXPECT_EQ(fixture.text("lblSpeed"), "Speed(kph)");
    EXPECT_EQ(fixture.find<QLineEdit>("txtDistance")->text(), "138.89");

    WindowFixture disabled;
    disabled.answeredUpdateQuestion();
    disabled.store.writeText("Enable Distance", "0");
    disabled.store.writeText("Distance", "100");
    disabled.start();
    EXPECT_EQ(disabled.find<QLineEdit>("txtDistance")->text(), "48");
}

TEST(ShutDown, ExitAndTheCloseBoxStopOnce) {
    WindowFixture fixture;
    fixture.answeredUpdateQuestion();
    fixture.enableCamera(0);
    app::MainWindow& window = fixture.start();
    int stops = 0;
    QObject::connect(&window, &app::MainWindow::stopped, [&stops] { ++stops; });
    fixture.recorder.clearLog();

    fixture.click("mnuExit");
    window.close();
    EXPECT_EQ(stops, 1);
    EXPECT_FALSE(window.isVisible());
    const QStringList& log = fixture.recorder.log();
    EXPECT_EQ(log.mid(0, 4), (QStringList{"cam0.SetConnected(0)", "cam1.SetConnected(0)",
                                          "cam2.SetConnected(0)", "cam3.SetConnected(0)"}));
    EXPECT_EQ(log.indexOf("player0.PlayerClose()"), 4);
    EXPECT_EQ(log.last(), "audio.SetConnected(0)");

    // The other way round: the close box first, then Exit.
    WindowFixture closed;
    closed.answeredUpdateQuestion();
    app::MainWindow& other = closed.start();
    int otherStops = 0;
    QObject::connect(&other, &app::MainWindow::stopped, [&otherStops] { ++otherStops; });
    other.close();
    closed.click("mnuExit");
    EXPECT_EQ(otherStops, 1);
}

} // namespace
} // namespace ravelcue::test
