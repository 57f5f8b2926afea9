// The Setup dialog on the real engine with the demo devices, opened from the menu and driven by
// its controls.

#include "app/WindowFixture.h"
#include "platform/media/AudioInstance.h"
#include "platform/media/CaptureInstance.h"
#include "platform/media/VideoView.h"
#include "platform/media/demo/DemoStamp.h"
#include "setup/FormatSettingsDialog.h"
#include "setup/SetupDialog.h"
#include "setup/SourceSettingsDialog.h"
#include "support/Ffprobe.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QTextBrowser>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

using Values = std::map<std::string, std::string, std::less<>>;

class SetupWindow : public ::testing::Test {
protected:
    SetupWindow() {
        fixture.answeredUpdateQuestion();
        fixture.enableDemoDevices();
    }

    setup::SetupDialog& open() {
        fixture.start();
        fixture.click("mnuSetup");
        auto* dialog = fixture.window().findChild<setup::SetupDialog*>();
        EXPECT_NE(dialog, nullptr);
        return *dialog;
    }
    setup::SetupDialog* dialog() { return fixture.window().findChild<setup::SetupDialog*>(); }
    template <typename T>
    T* in(const QString& name) {
        T* control = dialog()->findChild<T*>(name);
        EXPECT_NE(control, nullptr) << name.toStdString();
        return control;
    }
    // A choice made by the user, which runs the list's click handler.
    void choose(const QString& list, int entry) {
        auto* box = in<QComboBox>(list);
        box->setCurrentIndex(entry);
        emit box->activated(entry);
        QCoreApplication::processEvents();
    }
    // A click as the user makes it (a check box takes a mouse click only on its box and text).
    void press(const QString& button) {
        in<QAbstractButton>(button)->click();
        QCoreApplication::processEvents();
    }
    media::CaptureInstance& cam(int i) { return fixture.window().media().cam(i); }

    WindowFixture fixture{DemoDevices{}};
};

TEST_F(SetupWindow, OpensWithTheCamerasInItsOwnPreviewsAndTheirReadBack) {
    setup::SetupDialog& setup = open();
    EXPECT_TRUE(setup.isVisible());
    EXPECT_TRUE(setup.SetupLoaded());
    EXPECT_TRUE(fixture.prompts.texts().isEmpty())
        << fixture.prompts.texts().join('|').toStdString();
    for (int i = 0; i < 4; ++i) {
        EXPECT_FALSE(cam(i).Connected()) << "the main window's camera " << i << " is taken away";
        media::VideoView* view = setup.preview(i).view();
        ASSERT_TRUE(WindowFixture::waitForPicture(view)) << i;
        EXPECT_TRUE(media::readDemoStamp(view->currentFrame()).valid) << i;
        EXPECT_EQ(in<QLabel>(QStringLiteral("lblVidSize_%1").arg(i))->text(), "640x480");
        EXPECT_EQ(in<QLabel>(QStringLiteral("lblFrameRate_%1").arg(i))->text(), "30.00fps");
        EXPECT_TRUE(in<QCheckBox>(QStringLiteral("chkCamEnable_%1").arg(i))->isChecked());
    }
    const auto* source = in<QComboBox>("cboVideoSource_1");
    ASSERT_GE(source->count(), 2);
    EXPECT_EQ(source->currentText().toStdString(), *fixture.store.readText("Video Source-1"));

    // Captions and tips, a sample of each kind.
    struct Caption {
        const char* name;
        const char* text;
        const char* tip;
    };
    for (const Caption& c :
         {Caption{"chkCamEnable_2", "", "Enable Camera 3"},
          Caption{"cmdVideoCompression", "Codec Settings", "Change video codec settings"},
          Caption{"cmdSetDefaultColors", "Defaults", "Set all the colors back to default values"},
          Caption{"chkUnits", "Metric Units",
                  "Used to set units to metric for break speed calculations"},
          Caption{"chkEnableCheckForUpdate", "Check for update at Startup",
                  "Enable check for new version at startup"},
          Caption{"cmdCancel", "Cancel", "Click to cancel"}}) {
        auto* button = in<QAbstractButton>(c.name);
        EXPECT_EQ(button->text(), c.text) << c.name;
        EXPECT_EQ(button->toolTip(), c.tip) << c.name;
    }
    EXPECT_EQ(in<QLineEdit>("txtNickname_3")->toolTip(), "Nickname for Camera 4");
    EXPECT_TRUE(in<QPushButton>("cmdVideoFormatDlg_0")->isEnabled());

    press("cmdVideoCompression");
    EXPECT_EQ(fixture.prompts.texts(), QStringList{"No codec set"});

    press("cmdHelp");
    QTextBrowser* help = nullptr;
    for (QWidget* top : QApplication::topLevelWidgets()) {
        if (top->objectName() == QLatin1String("frmHelp") && top->isVisible()) {
            help = top->findChild<QTextBrowser*>("txtHelp");
        }
    }
    ASSERT_NE(help, nullptr);
    EXPECT_EQ(help->source(), QUrl("qrc:/help/160.html"));
}

TEST_F(SetupWindow, OkStoresTheChoicesOnlyWithANumberForDistanceAndTheMainWindowFollows) {
    fixture.store.writeText("CamEnable-1", "0");
    setup::SetupDialog& setup = open();
    EXPECT_FALSE(in<QCheckBox>("chkCamEnable_1")->isChecked());
    const int last = in<QComboBox>("cboVideoSource_1")->count() - 1;
    choose("cboVideoSource_1", last);
    press("chkCamEnable_1");
    in<QLineEdit>("txtNickname_1")->setText("Side (cam)");
    EXPECT_EQ(in<QLineEdit>("txtNickname_1")->text(), "Side cam");
    EXPECT_EQ(fixture.prompts.texts(), QStringList{"Characters \"( ) -\" not allowed in Nickname"});
    choose("cboWidth", 4);
    EXPECT_EQ(fixture.window().settings().MarkerWidth, 5) << "the width is in force at once";
    fixture.prompts.chooseColorNext(QColor(255, 0, 0));
    press("cmdMarkerColor");
    press("chkUnits");
    ASSERT_TRUE(WindowFixture::waitForPicture(setup.preview(1).view()));

    // A distance that is not a number is refused, with the dialog left open and nothing stored.
    Values expected = fixture.store.values();
    in<QLineEdit>("txtDistance")->setText("forty");
    press("cmdOK");
    EXPECT_EQ(fixture.prompts.texts().last(), "The Distance field must hold a number.");
    ASSERT_EQ(dialog(), &setup);
    EXPECT_TRUE(setup.isVisible());
    EXPECT_EQ(fixture.store.values(), expected);
    in<QLineEdit>("txtDistance")->setText("90.5");

    const std::string lastSource = in<QComboBox>("cboVideoSource_1")->itemText(last).toStdString();
    for (const auto& [name, value] : std::initializer_list<std::pair<std::string, std::string>>{
             {"Marker Color", "255"},
             {"Marker Width", "5"},
             {"Units", "1"},
             {"Cueball", "1"},
             {"Enable Distance", "1"},
             {"Distance", "90.5"},
             {"Avi Codec", "None"},
             {"Wmv Profile", kDefaultWmvProfile},
             {"Capture Type", "AVI"},
             {"Mjpeg Quality", "28"},
             {"H264 Bit Rate", "0"},
             {"H264 Key Frame Interval", "0"},
             {"Mpeg4 Bit Rate", "0"},
             {"Mpeg4 Key Frame Interval", "0"},
             {"Video Source-1", lastSource},
             {"Video Device Index-1", std::to_string(last)},
             {"CamEnable-1", "1"},
             {"CamNickname-1", "Side cam"}}) {
        expected[name] = value;
    }
    for (int i = 0; i < 4; ++i) {
        expected[cameraSettingName("Video Size-", i)] = "640x480";
        expected[cameraSettingName("Frame Rate-", i)] = "30.00";
        if (i != 1) {
            expected[cameraSettingName("CamNickname-", i)] = "Cam" + std::to_string(i + 1);
        }
    }
    press("cmdOK");
    EXPECT_EQ(fixture.store.values(), expected);

    EXPECT_EQ(dialog(), nullptr);
    EXPECT_EQ(fixture.window().state().CurrentState, "Live");
    EXPECT_EQ(fixture.text("lblDistance"), "Distance(cm)");
    EXPECT_EQ(fixture.text("lblSpeed"), "Speed(kph)");
    EXPECT_EQ(fixture.find<QLineEdit>("txtDistance")->text(), "90.5");
    EXPECT_EQ(fixture.text("lblCamName_1"), "Side cam");
    EXPECT_TRUE(fixture.find<QCheckBox>("chkCapture_1")->isChecked());
    EXPECT_TRUE(fixture.find<QWidget>("optCamSelect_1")->isEnabled());
    EXPECT_EQ(fixture.window().settings().MarkerColor, 255);
    for (int i = 0; i < 4; ++i) {
        EXPECT_TRUE(cam(i).Connected()) << i;
    }
    EXPECT_EQ(cam(1).VideoDevice(), last);
}

TEST_F(SetupWindow, CodecSettingsAreOfferedWhereTheyMeanSomethingAndStoredAtOk) {
    setup::SetupDialog& setup = open();
    auto* codecs = in<QComboBox>("cboAviCodecs");
    for (const auto& [entry, enabled] : {std::pair{"FFV1 (lossless)", false},
                                         std::pair{"H.264", true}, std::pair{"MJPEG", true}}) {
        codecs->setCurrentText(entry);
        EXPECT_EQ(in<QPushButton>("cmdVideoCompression")->isEnabled(), enabled) << entry;
    }
    press("cmdVideoCompression");
    auto* quality = setup.findChild<QSpinBox*>("spnQuality");
    ASSERT_NE(quality, nullptr);
    EXPECT_EQ(quality->value(), 28);
    quality->setValue(10);
    quality->parentWidget()->findChild<QPushButton*>("cmdOK")->click();
    QCoreApplication::processEvents();
    press("cmdOK");
    EXPECT_EQ(fixture.store.values().at("Mjpeg Quality"), "10");
    EXPECT_EQ(fixture.store.values().at("Avi Codec"), "MJPEG");
}

TEST_F(SetupWindow, AFormatChosenFromTheModesIsShownStoredAndUsedLiveAndInARecording) {
    setup::SetupDialog& setup = open();
    ASSERT_TRUE(in<QPushButton>("cmdVideoFormatDlg_1")->isEnabled());
    press("cmdVideoFormatDlg_1");
    auto* format = setup.findChild<setup::FormatSettingsDialog*>();
    ASSERT_NE(format, nullptr);
    auto* modes = format->findChild<QListWidget*>("lstModes");
    EXPECT_EQ(modes->count(), 15);
    EXPECT_EQ(modes->currentItem()->text(), "640x480, 30.00 fps (RGB)") << "the mode in use";
    const QList<QListWidgetItem*> wanted =
        modes->findItems("1280x720, 60.00 fps (RGB)", Qt::MatchExactly);
    ASSERT_EQ(wanted.size(), 1);
    modes->setCurrentItem(wanted.front());
    format->findChild<QPushButton*>("cmdOK")->click();
    QCoreApplication::processEvents();

    EXPECT_EQ(in<QLabel>("lblVidSize_1")->text(), "1280x720");
    EXPECT_EQ(in<QLabel>("lblFrameRate_1")->text(), "60.00fps");
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return setup.preview(1).view()->pictureSize() == QSize(1280, 720); }, 10000));
    press("cmdOK");
    EXPECT_EQ(fixture.store.readText("Video Size-1"), "1280x720");
    EXPECT_EQ(fixture.store.readText("Frame Rate-1"), "60.00");
    EXPECT_EQ(cam(1).GetVideoSize(), QSize(1280, 720));
    EXPECT_EQ(cam(1).GetFrameRate(), 60.0);

    // A recording of that camera alone keeps the size and the rate.
    for (int i : {0, 2, 3}) {
        fixture.find<QCheckBox>(QStringLiteral("chkCapture_%1").arg(i))->setChecked(false);
    }
    fixture.find<QLineEdit>("txtFileName")->setText("format");
    fixture.click("cmdStartCapture");
    QTest::qWait(1000);
    fixture.click("cmdStartCapture");
    const QDir videos(QString::fromStdString(fixture.window().state().AppDataDir) + "/Videos");
    const QStringList files = videos.entryList(QDir::Files);
    ASSERT_EQ(files.size(), 1) << files.join('|').toStdString();
    const VideoProbe probe = probeVideo(videos.filePath(files.front()));
    ASSERT_TRUE(probe.ok);
    EXPECT_EQ(QSize(probe.width, probe.height), QSize(1280, 720));
    EXPECT_NEAR(probe.frameRate, 60.0, 0.01);
}

// The mean grey of a demo picture below its stamp band, every fourth pixel.
double meanGrey(const QImage& picture) {
    const QImage rgb = picture.convertToFormat(QImage::Format_RGB32);
    double sum = 0;
    int count = 0;
    for (int y = media::demoStampBandHeight(rgb.size()); y < rgb.height(); y += 4) {
        for (int x = 0; x < rgb.width(); x += 4) {
            sum += qGray(rgb.pixel(x, y));
            ++count;
        }
    }
    return count > 0 ? sum / count : 0;
}

TEST_F(SetupWindow, SourceSettingsChangeTheDemoPictureAtOnceAndTheCameraKeepsThem) {
    setup::SetupDialog& setup = open();
    media::VideoView* view = setup.preview(0).view();
    ASSERT_TRUE(WindowFixture::waitForPicture(view));
    const double before = meanGrey(view->currentFrame());
    ASSERT_TRUE(in<QPushButton>("cmdSourceDlg_0")->isEnabled());
    press("cmdSourceDlg_0");
    auto* source = setup.findChild<setup::SourceSettingsDialog*>();
    ASSERT_NE(source, nullptr);
    auto* brightness = source->findChild<QSlider*>("Brightness");
    ASSERT_NE(brightness, nullptr);
    ASSERT_NE(source->findChild<QSlider*>("Contrast"), nullptr);
    brightness->setValue(80);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return meanGrey(view->currentFrame()) > before + 40; }, 5000));
    EXPECT_TRUE(media::readDemoStamp(view->currentFrame()).valid) << "the stamps stay readable";
    source->findChild<QPushButton*>("cmdClose")->click();

    press("cmdOK");
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return meanGrey(cam(0).view()->currentFrame()) > before + 40; }, 5000))
        << "the main window's live view shows the camera as it was set";

    // Defaults put it back.
    fixture.click("mnuSetup");
    press("cmdSourceDlg_0");
    source = dialog()->findChild<setup::SourceSettingsDialog*>();
    EXPECT_EQ(source->findChild<QSlider*>("Brightness")->value(), 80);
    source->findChild<QPushButton*>("cmdDefaults")->click();
    EXPECT_EQ(source->findChild<QSlider*>("Brightness")->value(), 0);
    media::VideoView* again = dialog()->preview(0).view();
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return meanGrey(again->currentFrame()) < before + 20; }, 5000));
}

TEST_F(SetupWindow, EscapeCancelsStoresNothingAndKeepsTheWidthForTheRun) {
    fixture.store.writeText("CamEnable-3", "0");
    setup::SetupDialog& setup = open();
    const Values before = fixture.store.values();
    choose("cboWidth", 6);
    press("chkUnits");
    press("chkCamEnable_0");
    QTest::keyClick(&setup, Qt::Key_Escape);
    QCoreApplication::processEvents();

    EXPECT_EQ(dialog(), nullptr);
    EXPECT_EQ(fixture.store.values(), before);
    EXPECT_EQ(fixture.window().settings().MarkerWidth, 7);
    EXPECT_EQ(fixture.window().settings().Units, 0);
    EXPECT_EQ(fixture.text("lblDistance"), "Distance(in)");
    EXPECT_EQ(fixture.window().state().CurrentState, "Live");
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(cam(i).Connected()) << "camera " << i << " is given back";
    }
    EXPECT_FALSE(cam(3).Connected()) << "a disabled camera stays away";
}

TEST_F(SetupWindow, AStoredCameraThatIsGoneLeavesItsRowEmptyAndItsSizeAsItWas) {
    // Neither its name nor its index finds a device now.
    fixture.store.writeText("Video Source-2", "Gone Camera(9)");
    fixture.store.writeText("Video Device Index-2", "9");
    fixture.store.writeText("Video Size-2", "800x600");
    open();
    EXPECT_EQ(in<QComboBox>("cboVideoSource_2")->currentIndex(), -1);
    EXPECT_EQ(in<QLabel>("lblVidSize_2")->text(), "0x0") << "what the device reports";
    press("cmdOK");
    EXPECT_EQ(fixture.store.readText("Video Source-2"), "");
    EXPECT_EQ(fixture.store.readText("Video Device Index-2"), "-1");
    EXPECT_EQ(fixture.store.readText("Video Size-2"), "800x600") << "nothing read back to keep";
    EXPECT_FALSE(cam(2).Connected()) << "enabled, but without a device";
}

TEST_F(SetupWindow, AMissingCodecStopsTheLoadAndOkKeepsTheStoredDevices) {
    fixture.store.writeText("Avi Codec", "Cinepak");
    const Values stored = fixture.store.values();
    setup::SetupDialog& setup = open();
    EXPECT_EQ(fixture.prompts.texts(),
              QStringList{"The Cinepak codec is missing from your system."});
    EXPECT_FALSE(setup.SetupLoaded());
    EXPECT_TRUE(setup.isVisible());
    EXPECT_EQ(in<QComboBox>("cboVideoSource_0")->count(), 0);
    press("cmdOK");
    for (const char* name : {"Avi Codec", "Video Source-0", "Video Device Index-2", "CamEnable-3",
                             "Audio Source", "Audio Device Index"}) {
        EXPECT_EQ(fixture.store.readText(name), stored.at(name)) << name;
    }
}

TEST_F(SetupWindow, TheLevelBarRisesWhileTheDemoMicrophoneHearsATone) {
    setup::SetupDialog& setup = open();
    auto* microphones = in<QComboBox>("cboAudioSource");
    EXPECT_EQ(microphones->currentText(), "Demo Microphone");
    press("chkTest");
    ASSERT_TRUE(setup.testAudio().Connected());
    QTest::qWait(400);
    fixture.tick("tmrAudioLevel");
    const int quiet = in<QProgressBar>("pbAudioLevel")->value();

    fixture.tones.publish({1000.0, ToneBus::Clock::now(), std::chrono::milliseconds(3000)});
    QTest::qWait(400);
    fixture.tick("tmrAudioLevel");
    EXPECT_GT(in<QProgressBar>("pbAudioLevel")->value(), quiet + 20);

    press("chkTest");
    EXPECT_EQ(in<QProgressBar>("pbAudioLevel")->value(), 0);
    EXPECT_FALSE(setup.testAudio().Connected());
}

TEST_F(SetupWindow, BreakSpeedWaitsForAMicrophoneChosenInSetupAndThenRecordsFromIt) {
    fixture.enableDemoDevices(0);
    fixture.store.writeText("Audio Source", "");
    fixture.start();
    fixture.click("cmdBreakSpeed");
    fixture.click("cmdStartBreakSpeed");
    EXPECT_EQ(fixture.prompts.texts(),
              QStringList{"No audio source. Select one on the Setup window"});
    EXPECT_NE(fixture.panel(1), "Capturing Audio...");
    fixture.prompts.clear();

    fixture.click("mnuSetup");
    choose("cboAudioSource", in<QComboBox>("cboAudioSource")->findText("Demo Microphone"));
    press("cmdOK");
    ASSERT_TRUE(fixture.window().media().audio->Connected())
        << "used at once, not at the next start";
    fixture.click("cmdBreakSpeed");
    fixture.click("cmdStartBreakSpeed");
    EXPECT_TRUE(fixture.prompts.texts().isEmpty());
    EXPECT_EQ(fixture.panel(1), "Capturing Audio...");
    QTest::qWait(300);
    fixture.click("cmdStartBreakSpeed");
    const QFileInfo recording(QString::fromStdString(fixture.window().state().AppDataDir) +
                              "/breakspeed.wav");
    EXPECT_GT(recording.size(), 44 + 4 * 4410) << "at least a tenth of a second of sound";
}

} // namespace
} // namespace ravelcue::test
