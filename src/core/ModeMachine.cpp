#include "ModeMachine.h"

#include "AppSettings.h"
#include "AppState.h"

#include <array>

namespace ravelcue {

namespace {

constexpr std::array<std::string_view, 6> kSixButtons{"cmdShowLive",  "cmdLoadVideo",
                                                      "cmdLoadImage", "cmdDeleteFiles",
                                                      "cmdTraining",  "cmdBreakSpeed"};
constexpr std::array<std::string_view, 4> kToolFrames{"fmCapturetb", "fmTrainingTB",
                                                      "fmBreakSpeedTB", "fmRunEditTB"};

std::string indexed(std::string_view name, int index) {
    return std::string(name) + "_" + std::to_string(index);
}

bool isOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
    for (std::string_view w : words) {
        if (w == word) {
            return true;
        }
    }
    return false;
}

} // namespace

ModeGroup modeGroup(std::string_view word) {
    if (isOneOf(word, {"Live", "Training", "StartCaptureVideo", "StopCaptureVideo", "StartTraining",
                       "StartCalibrate", "StopTraining", "StopCalibrate", "DeleteFiles"})) {
        return ModeGroup::Camera;
    }
    if (isOneOf(word, {"PlayVideoFile", "LoadImageFile"})) {
        return ModeGroup::Player;
    }
    if (isOneOf(word, {"BreakSpeed", "StartCaptureAudio", "StopCaptureAudio"})) {
        return ModeGroup::BreakSpeed;
    }
    return ModeGroup::None;
}

ModeMachine::ModeMachine(AppState& state, const AppSettings& settings, ModeHost& host)
    : state_(state)
    , settings_(settings)
    , host_(host) {}

void ModeMachine::enableSixButtons(bool enabled) {
    for (std::string_view button : kSixButtons) {
        host_.setControlEnabled(button, enabled);
    }
}

void ModeMachine::setCameraOptionsOfEnabledCameras(bool enabled) {
    for (int i = 0; i < kCameraCount; ++i) {
        if (settings_.cameraEnabled(i)) {
            host_.setControlEnabled(indexed("optCamSelect", i), enabled);
        }
    }
}

void ModeMachine::reconnectEnabledCameras(std::string_view renderMode) {
    for (int i = 0; i < kCameraCount; ++i) {
        if (settings_.cameraEnabled(i)) {
            host_.connectCam(i, settings_.VideoDeviceIndex[static_cast<size_t>(i)], renderMode);
        }
    }
}

void ModeMachine::State(std::string_view word) {
    if (word == "Live") {
        state_.CurrentState = "Live";
        for (int i = 0; i < kCameraCount; ++i) {
            if (state_.PlayerEnable[static_cast<size_t>(i)]) {
                host_.closePlayer(i);
            }
        }
        setCameraOptionsOfEnabledCameras(true);
        host_.setControlEnabled("optCamSelect_4", true);
        enableSixButtons(true);
        host_.resetSpeedList();
        host_.setTitle();
        if (state_.LiveRenderMode == "Slow") {
            state_.LiveRenderMode = "Fast";
            reconnectEnabledCameras("Fast");
        }
    } else if (word == "Training") {
        state_.CurrentState = "Training";
        host_.setControlEnabled("optCamSelect_4", false);
        if (state_.LiveRenderMode == "Fast") {
            state_.LiveRenderMode = "Slow";
            reconnectEnabledCameras("Slow");
        }
    } else if (word == "StartCaptureVideo") {
        state_.CurrentState = "StartCaptureVideo";
        host_.setControlEnabled("txtFileName", false);
        for (int i = 0; i < kCameraCount; ++i) {
            host_.setControlEnabled(indexed("chkCapture", i), false);
        }
        setCameraOptionsOfEnabledCameras(true);
        host_.setControlEnabled("optCamSelect_4", true);
        enableSixButtons(false);
    } else if (word == "StopCaptureVideo") {
        state_.CurrentState = "StopCaptureVideo";
        host_.setControlEnabled("txtFileName", true);
        for (int i = 0; i < kCameraCount; ++i) {
            if (settings_.cameraEnabled(i)) {
                host_.setControlEnabled(indexed("chkCapture", i), true);
            }
        }
        host_.setControlEnabled("optCamSelect_4", true);
        enableSixButtons(true);
    } else if (word == "BreakSpeed") {
        state_.CurrentState = "BreakSpeed";
        host_.selectCameraOption(0);
        setCameraOptionsOfEnabledCameras(false);
        host_.setControlEnabled("optCamSelect_4", false);
        host_.setControlEnabled("cmdShowLive", true);
    } else if (word == "StartCaptureAudio") {
        state_.CurrentState = "BreakSpeed";
        host_.setControlEnabled("cmdShowLive", false);
        host_.setControlEnabled("cmdCalTone", false);
    } else if (word == "StopCaptureAudio") {
        state_.CurrentState = "BreakSpeed";
        host_.setControlEnabled("cmdShowLive", true);
        host_.setControlEnabled("cmdCalTone", true);
    } else if (word == "StartTraining" || word == "StartCalibrate") {
        state_.CurrentState = "StartTraining";
    } else if (word == "StopTraining" || word == "StopCalibrate") {
        state_.CurrentState = "StopTraining";
        host_.setControlEnabled("cmdCalTone", true);
    } else if (word == "PlayVideoFile" || word == "LoadImageFile") {
        const bool video = word == "PlayVideoFile";
        state_.CurrentState = std::string(word);
        host_.selectCameraOption(0);
        setCameraOptionsOfEnabledCameras(false);
        host_.setControlEnabled("optCamSelect_4", false);
        host_.setControlVisible("Toolbar1", video);
        host_.setControlEnabled("cmdDeleteFiles", false);
        if (video) {
            host_.setControlEnabled("cmdLoadImage", true);
        }
        host_.resetSpeedList();
        host_.setControlVisible("lstSpeed", video);
        host_.setControlVisible("lblSpeed2", video);
        host_.setControlVisible("chkLoop", video);
    } else if (word == "DeleteFiles" || word == "LoadVideoFile") {
        state_.CurrentState = std::string(word);
    }
    UpdateView();
}

void ModeMachine::setMenuEntriesForCameras() {
    host_.setControlEnabled("mnuCameraSelect", true);
    for (std::string_view entry : {"mnuPlayerSelect", "mnuCaptureImage", "mnuCaptureSet",
                                   "mnuSaveVideo", "mnuZoomPan", "mnuGridControl"}) {
        host_.setControlEnabled(entry, false);
    }
}

void ModeMachine::setMenuEntriesForPlayers() {
    host_.setControlEnabled("mnuCameraSelect", false);
    for (std::string_view entry : {"mnuSaveVideo", "mnuZoomPan", "mnuGridControl"}) {
        host_.setControlEnabled(entry, true);
    }
}

void ModeMachine::showOnlyFrame(std::string_view frame) {
    for (std::string_view f : kToolFrames) {
        host_.setControlVisible(f, f == frame);
    }
}

void ModeMachine::UpdateView() {
    for (int i = 0; i < kCameraCount; ++i) {
        host_.setControlVisible(indexed("picPlayer", i), false);
        host_.setControlVisible(indexed("picCapture", i), false);
    }
    host_.setControlVisible("picBreakSpeed", false);

    const std::string& word = state_.CurrentState;
    if (isOneOf(word, {"Live", "StartCaptureVideo", "DeleteFiles"})) {
        setMenuEntriesForCameras();
        showOnlyFrame("fmCapturetb");
        host_.setControlVisible("Slider1", false);
    } else if (isOneOf(word, {"Training", "StartTraining"})) {
        setMenuEntriesForCameras();
        showOnlyFrame("fmTrainingTB");
        host_.setControlVisible("Slider1", false);
        host_.setControlVisible(indexed("picCapture", state_.SelectedCam), true);
    } else if (word == "BreakSpeed") {
        showOnlyFrame("fmBreakSpeedTB");
        host_.setControlVisible("Slider1", false);
        state_.SelectedCam = 0;
        host_.setControlVisible("picBreakSpeed", true);
    } else if (isOneOf(word, {"PlayVideoFile", "LoadVideoFile"})) {
        setMenuEntriesForPlayers();
        showOnlyFrame("fmRunEditTB");
        host_.setControlVisible("Slider1", true);
        state_.SelectedCam = 0;
    } else if (word == "LoadImageFile") {
        setMenuEntriesForPlayers();
        showOnlyFrame("fmRunEditTB");
        host_.setControlVisible("Slider1", false);
        state_.SelectedCam = 0;
    }
    host_.formResize();
}

} // namespace ravelcue
