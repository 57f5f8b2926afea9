#pragma once

#include "core/AppState.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The rules of playback that need no window: which players a command reaches, the speed list,
// the time units of the timeline, the texts of the status bar, stepping and the region.
namespace ravelcue::playback {

// In the single view the one player shown; in the quad view every player holding a member, in
// index order. Commands go to these, one after the other.
std::vector<int> activePlayers(const AppState& state);
// The player whose time the slider and the status bar show.
int indexPlayer(const AppState& state);

// The speed list, top to bottom; its top entry is the speed.
inline constexpr std::array<std::string_view, 5> kSpeedTexts{"X4", "X2", "X1", "X/2", "X/4"};
inline constexpr int kNormalSpeedIndex = 2;
// The rate of the entry at the top of the list; nothing outside the list.
std::optional<double> speedRate(int topIndex);

// One timeline step is 100 ms.
inline constexpr int kStepMs = 100;
int sliderStep(double ms);
// "Position=.00/12.34": position and duration in seconds.
std::string positionText(double positionMs, double durationMs);
// "Size:640x480, Fps:30"; the rate is left out when there is none.
std::string sizeText(int width, int height, int frameCount, double durationMs);
// The thumb's pop-up: the step in seconds, "12.30".
std::string secondsText(int step);

// How a step button moves a video of this type: by one frame, by 100 ms, or not at all.
enum class StepKind { Frame, Time, None };
StepKind stepKind(std::string_view loadedFileType);

// The type word of a video by its extension, in any case: "avi", "wmv", "mp4", "mov", "mkv";
// nothing for any other ending.
std::optional<std::string> videoFileType(std::string_view path);

// The region of the timeline, in steps. Drawn when SelLength is above 0; obeyed by playback only
// while RegionActive.
struct Region {
    int SelStart = 0;
    int SelLength = 0;
    bool RegionActive = false;

    int end() const { return SelStart + SelLength; }
    // The thumb at `value` stands at or past the end of a region in force.
    bool endedAt(int value) const { return RegionActive && value >= end(); }
};

// Mouse codes as the timeline reports them: buttons 1 left, 2 right; shift 1 Shift, 2 Ctrl, 4 Alt.
inline constexpr int kRightButton = 2;
inline constexpr int kShiftAlone = 1;

// Shift alone starts a new region at the thumb; the right button clears the region.
void regionPress(Region& region, int button, int shift, int value);
// With Shift alone, a drag to the right of a start above 0 stretches the region to the thumb.
void regionMove(Region& region, int shift, int value);
// The region is put in force only when Shift alone is still held as the button is let go.
void regionRelease(Region& region, int shift);

} // namespace ravelcue::playback
