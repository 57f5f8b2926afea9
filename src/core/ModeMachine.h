#pragma once

#include <string>
#include <string_view>

namespace ravelcue {

struct AppSettings;
struct AppState;

// What the mode machine asks of the window. Controls are named by their object names, arrays as
// "optCamSelect_4".
class ModeHost {
public:
    virtual ~ModeHost() = default;

    virtual void setControlEnabled(std::string_view control, bool enabled) = 0;
    virtual void setControlVisible(std::string_view control, bool visible) = 0;
    // Sets option `index` of the camera options; when it was not already set its click handler
    // runs at once (which ends in an inner UpdateView).
    virtual void selectCameraOption(int index) = 0;
    // The speed list back to "X1" without a highlight.
    virtual void resetSpeedList() = 0;
    // "Ravelcue - " and the program's version.
    virtual void setTitle() = 0;
    virtual void connectCam(int camera, int deviceIndex, std::string_view renderMode) = 0;
    virtual void closePlayer(int player) = 0;
    // Sizes and shows the panes of the current mode.
    virtual void formResize() = 0;
};

// The layout group a state word belongs to.
enum class ModeGroup { Camera, Player, BreakSpeed, None };
ModeGroup modeGroup(std::string_view word);

// The window's modes: State takes a state word, records it, switches the controls of that word
// and ends in UpdateView, which shows the pane, tool frame and menu entries of the mode. Words
// are compared exactly, case included.
class ModeMachine {
public:
    ModeMachine(AppState& state, const AppSettings& settings, ModeHost& host);

    void State(std::string_view word);
    void UpdateView();
    // Sizes and shows the panes of the current mode (the window's resize operation).
    void FormResize() { host_.formResize(); }

private:
    void enableSixButtons(bool enabled);
    void setCameraOptionsOfEnabledCameras(bool enabled);
    void reconnectEnabledCameras(std::string_view renderMode);
    void setMenuEntriesForCameras();
    void setMenuEntriesForPlayers();
    void showOnlyFrame(std::string_view frame);

    AppState& state_;
    const AppSettings& settings_;
    ModeHost& host_;
};

} // namespace ravelcue
