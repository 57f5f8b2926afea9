#include "WindowFixture.h"
#include "core/ModeMachine.h"
#include "platform/media/VideoView.h"

#include <set>
#include <string>

#include <QDialog>
#include <QFrame>
#include <QLabel>
#include <QRadioButton>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

class Modes : public ::testing::Test {
protected:
    Modes() {
        fixture.answeredUpdateQuestion();
        fixture.enableCamera(0);
        fixture.enableCamera(3);
        fixture.start();
        fixture.recorder.clearLog();
    }

    bool shown(const QString& name) { return !fixture.find<QWidget>(name)->isHidden(); }
    AppState& state() { return fixture.window().state(); }

    WindowFixture fixture;
};

// Which cameras reconnect and when is the mode machine's (its own tests); here, that the window
// turns its slow and fast modes into the cameras' render modes.
TEST_F(Modes, TrainingAndLiveReconnectTheEnabledCamerasWithTheirRenderMode) {
    fixture.click("cmdTraining");
    EXPECT_EQ(fixture.recorder.calls("cam0.SetRenderMode"), QStringList{"cam0.SetRenderMode(1)"});
    EXPECT_EQ(fixture.recorder.calls("cam3.SetRenderMode"), QStringList{"cam3.SetRenderMode(1)"});
    EXPECT_EQ(fixture.panel(1), "Stroke Training");
    EXPECT_EQ(fixture.text("lblAlarm"), "");

    fixture.recorder.clearLog();
    fixture.click("cmdShowLive");
    EXPECT_EQ(fixture.recorder.calls("cam0.SetRenderMode"), QStringList{"cam0.SetRenderMode(0)"});
    EXPECT_EQ(fixture.recorder.calls("cam3.SetRenderMode"), QStringList{"cam3.SetRenderMode(0)"});
    EXPECT_EQ(fixture.panel(1), "Live Video");
    // The live button also wipes the selected camera's marks and closes its player.
    EXPECT_EQ(fixture.recorder.calls("cam0.SetBitmapOverlay").size(), 1);
    EXPECT_TRUE(fixture.recorder.log().contains("player0.PlayerClose()"));
}

// The mode machine names controls by text: a name the window lacks would switch nothing.
TEST_F(Modes, EveryControlTheModeMachineNamesIsAControlOfTheWindow) {
    struct Names final : ModeHost {
        std::set<std::string> seen;
        void setControlEnabled(std::string_view c, bool) override { seen.emplace(c); }
        void setControlVisible(std::string_view c, bool) override { seen.emplace(c); }
        void selectCameraOption(int) override {}
        void resetSpeedList() override {}
        void setTitle() override {}
        void connectCam(int, int, std::string_view) override {}
        void closePlayer(int) override {}
        void formResize() override {}
    } names;
    AppState modeState;
    AppSettings settings;
    settings.CamEnable = {1, 1, 1, 1};
    ModeMachine machine(modeState, settings, names);
    for (const char* cameraView : {"SingleCamera", "QuadCamera"}) {
        for (const char* playerView : {"SinglePlayer", "QuadPlayer"}) {
            for (const char* type : {"avi", "img"}) {
                for (const char* word :
                     {"Live", "Training", "StartTraining", "StopTraining", "StartCalibrate",
                      "StopCalibrate", "StartCaptureVideo", "StopCaptureVideo", "DeleteFiles",
                      "LoadVideoFile", "PlayVideoFile", "LoadImageFile", "BreakSpeed",
                      "StartCaptureAudio", "StopCaptureAudio"}) {
                    modeState.CameraView = cameraView;
                    modeState.PlayerView = playerView;
                    modeState.LoadedFileType = type;
                    machine.State(word);
                }
            }
        }
    }
    ASSERT_GT(names.seen.size(), 30U);
    for (const std::string& name : names.seen) {
        EXPECT_NE(fixture.window().control(QString::fromStdString(name)), nullptr) << name;
    }
}

TEST_F(Modes, CameraOptionsSwitchBetweenOneCameraAndAll) {
    fixture.click("optCamSelect_3");
    EXPECT_EQ(state().SelectedCam, 3);
    EXPECT_TRUE(shown("picCapture_3"));
    EXPECT_FALSE(shown("picCapture_0"));

    fixture.click("optCamSelect_4");
    EXPECT_EQ(state().CameraView, "QuadCamera");
    EXPECT_EQ(state().SelectedCam, 3) << "all four keeps the selected camera";
    for (int i = 0; i < 4; ++i) {
        EXPECT_TRUE(shown(QStringLiteral("picCapture_%1").arg(i))) << "blank panes show too";
    }

    // A double click on a picture in the quad view shows that camera alone, and back.
    emit fixture.window().media().cam(0).view()->PictureDoubleClick();
    EXPECT_EQ(state().CameraView, "SingleCamera");
    EXPECT_EQ(state().SelectedCam, 0);
    emit fixture.window().media().cam(0).view()->PictureDoubleClick();
    EXPECT_EQ(state().CameraView, "QuadCamera");
}

TEST_F(Modes, CameraMenuStillReachesAllFourInTraining) {
    fixture.click("cmdTraining");
    ASSERT_FALSE(fixture.find<QRadioButton>("optCamSelect_4")->isEnabled());
    fixture.click("mnuCamera_4");
    EXPECT_EQ(state().CameraView, "QuadCamera");
    EXPECT_TRUE(fixture.find<QRadioButton>("optCamSelect_4")->isChecked());
}

TEST_F(Modes, BreakSpeedFromTheQuadViewShowsItsPaneWithCameraOneSelected) {
    fixture.click("optCamSelect_3");
    fixture.click("optCamSelect_4");
    fixture.click("cmdBreakSpeed");
    EXPECT_EQ(state().CurrentState, "BreakSpeed");
    EXPECT_TRUE(fixture.find<QRadioButton>("optCamSelect_0")->isChecked());
    EXPECT_TRUE(shown("picBreakSpeed"));
    EXPECT_FALSE(shown("picCapture_0"));
    EXPECT_EQ(fixture.panel(1), "Break Speed");
    EXPECT_FALSE(fixture.find<QRadioButton>("optCamSelect_0")->isEnabled());

    fixture.click("cmdShowLive");
    EXPECT_TRUE(shown("picCapture_0"));
    EXPECT_TRUE(fixture.find<QRadioButton>("optCamSelect_0")->isEnabled());
    EXPECT_FALSE(fixture.find<QRadioButton>("optCamSelect_1")->isEnabled());
}

TEST_F(Modes, DeleteFilesKeepsTheCameraViewAndComesBackToLive) {
    fixture.click("cmdDeleteFiles");
    EXPECT_EQ(state().CurrentState, "DeleteFiles");
    auto* dialog = fixture.window().findChild<QDialog*>("frmFileDelete");
    ASSERT_NE(dialog, nullptr);
    dialog->close();
    EXPECT_EQ(state().CurrentState, "Live");
    EXPECT_TRUE(shown("fmCapturetb"));
}

} // namespace
} // namespace ravelcue::test
