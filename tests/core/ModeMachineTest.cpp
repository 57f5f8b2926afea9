#include "core/ModeMachine.h"

#include "core/AppSettings.h"
#include "core/AppState.h"

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace ravelcue {
namespace {

// A window reduced to what the mode machine touches: flags by control name and a log of the
// calls that have effects beyond a flag.
class FakeWindow final : public ModeHost {
public:
    explicit FakeWindow(AppState& state)
        : state_(state) {}

    void setControlEnabled(std::string_view control, bool enabled) override {
        enabled_[std::string(control)] = enabled;
    }
    void setControlVisible(std::string_view control, bool visible) override {
        visible_[std::string(control)] = visible;
    }
    void selectCameraOption(int index) override {
        log.push_back("select " + std::to_string(index));
        // As the real option does: a change of option runs its click handler.
        if (checkedOption_ != index) {
            checkedOption_ = index;
            state_.SelectedCam = index == 4 ? state_.SelectedCam : index;
            state_.CameraView = index == 4 ? "QuadCamera" : "SingleCamera";
            if (machine != nullptr) {
                machine->UpdateView();
            }
        }
    }
    void resetSpeedList() override { log.emplace_back("speed X1"); }
    void setTitle() override { log.emplace_back("title"); }
    void connectCam(int camera, int deviceIndex, std::string_view mode) override {
        log.push_back("connect " + std::to_string(camera) + " " + std::to_string(deviceIndex) +
                      " " + std::string(mode));
    }
    void closePlayer(int player) override { log.push_back("close " + std::to_string(player)); }
    void formResize() override { log.push_back("resize " + state_.CurrentState); }

    bool enabled(const std::string& c) const { return enabled_.at(c); }
    bool visible(const std::string& c) const { return visible_.at(c); }
    bool touched(const std::string& c) const { return enabled_.count(c) || visible_.count(c); }
    std::vector<std::string> connects() const {
        std::vector<std::string> found;
        for (const std::string& entry : log) {
            if (entry.rfind("connect", 0) == 0) {
                found.push_back(entry);
            }
        }
        return found;
    }
    void checkOption(int index) { checkedOption_ = index; }

    std::vector<std::string> log;
    ModeMachine* machine = nullptr;

private:
    AppState& state_;
    std::map<std::string, bool> enabled_;
    std::map<std::string, bool> visible_;
    int checkedOption_ = 0;
};

class ModeMachineTest : public ::testing::Test {
protected:
    ModeMachineTest() { window.machine = &machine; }

    void enable(int camera, int device) {
        settings.CamEnable[static_cast<size_t>(camera)] = 1;
        settings.VideoDeviceIndex[static_cast<size_t>(camera)] = device;
    }

    AppState state;
    AppSettings settings;
    FakeWindow window{state};
    ModeMachine machine{state, settings, window};
};

TEST_F(ModeMachineTest, LiveReconnectsOnlyWhenComingFromTraining) {
    enable(1, 7);
    enable(3, 2);
    machine.State("Live");
    EXPECT_TRUE(window.connects().empty()) << "Live in Fast mode must not reconnect";

    machine.State("Training");
    machine.State("Training");
    EXPECT_EQ(window.connects(), (std::vector<std::string>{"connect 1 7 Slow", "connect 3 2 Slow"}))
        << "Training twice reconnects once, enabled cameras only, in index order";
    EXPECT_EQ(state.LiveRenderMode, "Slow");

    machine.State("StartTraining");
    machine.State("StopCalibrate");
    EXPECT_EQ(state.LiveRenderMode, "Slow") << "training words keep the slow mode";

    window.log.clear();
    machine.State("Live");
    EXPECT_EQ(window.connects(),
              (std::vector<std::string>{"connect 1 7 Fast", "connect 3 2 Fast"}));
    EXPECT_EQ(state.LiveRenderMode, "Fast");
    // The title is set before the cameras are reconnected.
    const auto title = std::find(window.log.begin(), window.log.end(), "title");
    const auto first = std::find(window.log.begin(), window.log.end(), "connect 1 7 Fast");
    EXPECT_LT(title, first);
}

TEST_F(ModeMachineTest, LiveClosesEnabledPlayersAndGivesBackTheCameraOptions) {
    enable(2, 2);
    state.PlayerEnable = {true, false, true, false};
    machine.State("Live");
    EXPECT_EQ(window.log.front(), "close 0");
    EXPECT_EQ(window.log.at(1), "close 2");
    EXPECT_TRUE(window.enabled("optCamSelect_2"));
    EXPECT_FALSE(window.touched("optCamSelect_1")) << "a disabled camera's option is left alone";
    EXPECT_TRUE(window.enabled("optCamSelect_4"));
    for (const char* button : {"cmdShowLive", "cmdLoadVideo", "cmdLoadImage", "cmdDeleteFiles",
                               "cmdTraining", "cmdBreakSpeed"}) {
        EXPECT_TRUE(window.enabled(button)) << button;
    }
    EXPECT_EQ(state.CurrentState, "Live");
}

TEST_F(ModeMachineTest, CommandWordsRecordTheirModeAndWordsAreExact) {
    machine.State("BreakSpeed");
    machine.State("StartCaptureAudio");
    EXPECT_EQ(state.CurrentState, "BreakSpeed");
    EXPECT_FALSE(window.enabled("cmdShowLive"));
    EXPECT_FALSE(window.enabled("cmdCalTone"));
    machine.State("StopCaptureAudio");
    EXPECT_EQ(state.CurrentState, "BreakSpeed");
    EXPECT_TRUE(window.enabled("cmdCalTone"));

    machine.State("StartCalibrate");
    EXPECT_EQ(state.CurrentState, "StartTraining");
    machine.State("StopCalibrate");
    EXPECT_EQ(state.CurrentState, "StopTraining");

    window.log.clear();
    machine.State("live");
    machine.State("Live ");
    EXPECT_EQ(state.CurrentState, "StopTraining") << "a word outside the table records nothing";
    EXPECT_EQ(window.log, (std::vector<std::string>{"resize StopTraining", "resize StopTraining"}))
        << "but UpdateView still runs";
}

TEST_F(ModeMachineTest, CaptureWordsLockAndUnlockTheRightControls) {
    enable(0, 0);
    enable(2, 2);
    machine.State("StartCaptureVideo");
    for (int i = 0; i < 4; ++i) {
        EXPECT_FALSE(window.enabled("chkCapture_" + std::to_string(i)));
    }
    EXPECT_FALSE(window.enabled("txtFileName"));
    EXPECT_FALSE(window.enabled("cmdBreakSpeed"));
    EXPECT_TRUE(window.enabled("optCamSelect_2")) << "cameras stay selectable while recording";

    machine.State("StopCaptureVideo");
    EXPECT_TRUE(window.enabled("chkCapture_0"));
    EXPECT_TRUE(window.enabled("chkCapture_2"));
    EXPECT_FALSE(window.enabled("chkCapture_1")) << "only enabled cameras get their box back";
    EXPECT_TRUE(window.enabled("txtFileName"));
    EXPECT_TRUE(window.enabled("cmdDeleteFiles"));
}

TEST_F(ModeMachineTest, BreakSpeedFromQuadSelectsCameraOneFirst) {
    enable(1, 1);
    state.CameraView = "QuadCamera";
    state.SelectedCam = 3;
    window.checkOption(4);
    machine.State("BreakSpeed");
    // The option's handler ran inside the row, with the word already recorded.
    ASSERT_GE(window.log.size(), 3U);
    EXPECT_EQ(window.log[0], "select 0");
    EXPECT_EQ(window.log[1], "resize BreakSpeed");
    EXPECT_EQ(state.CameraView, "SingleCamera");
    EXPECT_EQ(state.SelectedCam, 0);
    EXPECT_FALSE(window.enabled("optCamSelect_1"));
    EXPECT_FALSE(window.enabled("optCamSelect_4"));
}

TEST_F(ModeMachineTest, ViewRowsShowOneFrameAndTheSliderOnlyForVideos) {
    const std::vector<std::pair<std::string, std::string>> frames{
        {"Live", "fmCapturetb"},           {"Training", "fmTrainingTB"},
        {"StartTraining", "fmTrainingTB"}, {"BreakSpeed", "fmBreakSpeedTB"},
        {"PlayVideoFile", "fmRunEditTB"},  {"LoadImageFile", "fmRunEditTB"},
        {"DeleteFiles", "fmCapturetb"},    {"StartCaptureVideo", "fmCapturetb"}};
    for (const auto& [word, frame] : frames) {
        machine.State(word);
        for (const char* f : {"fmCapturetb", "fmTrainingTB", "fmBreakSpeedTB", "fmRunEditTB"}) {
            EXPECT_EQ(window.visible(f), frame == f) << word << " " << f;
        }
        EXPECT_EQ(window.visible("Slider1"), word == "PlayVideoFile") << word;
    }
}

TEST_F(ModeMachineTest, PlayerModesSetTheirMenusAndBreakSpeedLeavesThem) {
    machine.State("PlayVideoFile");
    EXPECT_FALSE(window.enabled("mnuCameraSelect"));
    EXPECT_TRUE(window.enabled("mnuSaveVideo"));
    EXPECT_TRUE(window.visible("Toolbar1"));
    EXPECT_TRUE(window.visible("lstSpeed"));
    EXPECT_FALSE(window.enabled("cmdDeleteFiles"));

    machine.State("BreakSpeed");
    EXPECT_TRUE(window.enabled("mnuSaveVideo")) << "BreakSpeed touches no menu entry";

    machine.State("LoadImageFile");
    EXPECT_FALSE(window.visible("Toolbar1"));
    EXPECT_FALSE(window.visible("chkLoop"));
    EXPECT_TRUE(window.enabled("mnuZoomPan"));

    machine.State("Live");
    for (const char* entry : {"mnuPlayerSelect", "mnuCaptureImage", "mnuCaptureSet", "mnuSaveVideo",
                              "mnuZoomPan", "mnuGridControl"}) {
        EXPECT_FALSE(window.enabled(entry)) << entry;
    }
    EXPECT_TRUE(window.enabled("mnuCameraSelect"));
}

TEST_F(ModeMachineTest, TrainingShowsTheSelectedCameraAndKeepsSingleOptions) {
    enable(2, 2);
    machine.State("Live");
    state.SelectedCam = 2;
    machine.State("Training");
    EXPECT_TRUE(window.visible("picCapture_2"));
    EXPECT_FALSE(window.visible("picCapture_0"));
    EXPECT_FALSE(window.enabled("optCamSelect_4"));
    EXPECT_TRUE(window.enabled("optCamSelect_2"));
}

TEST(ModeGroups, EveryWordBelongsToItsLayoutGroup) {
    EXPECT_EQ(modeGroup("StopCaptureVideo"), ModeGroup::Camera);
    EXPECT_EQ(modeGroup("StopCalibrate"), ModeGroup::Camera);
    EXPECT_EQ(modeGroup("LoadImageFile"), ModeGroup::Player);
    EXPECT_EQ(modeGroup("StartCaptureAudio"), ModeGroup::BreakSpeed);
    EXPECT_EQ(modeGroup("LoadVideoFile"), ModeGroup::None);
    EXPECT_EQ(modeGroup("breakspeed"), ModeGroup::None);
}

} // namespace
} // namespace ravelcue
