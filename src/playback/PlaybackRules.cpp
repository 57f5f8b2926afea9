#include "PlaybackRules.h"

#include "core/NumberFormat.h"
#include "core/Rounding.h"
#include "core/TextCase.h"

#include <algorithm>
#include <cctype>

namespace ravelcue::playback {

std::vector<int> activePlayers(const AppState& state) {
    if (state.PlayerView != "QuadPlayer") {
        return {state.SelectedPlayer};
    }
    std::vector<int> players;
    for (int i = 0; i < kCameraCount; ++i) {
        if (state.PlayerEnable[static_cast<size_t>(i)]) {
            players.push_back(i);
        }
    }
    return players;
}

int indexPlayer(const AppState& state) {
    return state.PlayerView == "QuadPlayer" ? state.ReferencePlayer : state.SelectedPlayer;
}

std::optional<double> speedRate(int topIndex) {
    static constexpr std::array<double, 5> kRates{4.0, 2.0, 1.0, 0.5, 0.25};
    if (topIndex < 0 || topIndex >= static_cast<int>(kRates.size())) {
        return std::nullopt;
    }
    return kRates[static_cast<size_t>(topIndex)];
}

int sliderStep(double ms) {
    return roundToInt(ms / kStepMs);
}

std::string positionText(double positionMs, double durationMs) {
    return "Position=" + Format(positionMs / 1000.0, "#.00") + "/" +
           Format(durationMs / 1000.0, "#.00");
}

std::string sizeText(int width, int height, int frameCount, double durationMs) {
    const double rate = durationMs > 0 ? frameCount / durationMs * 1000.0 : 0.0;
    return "Size:" + std::to_string(width) + "x" + std::to_string(height) +
           ", Fps:" + Format(rate, "##");
}

std::string secondsText(int step) {
    return Format(step / 10.0, "#.00");
}

StepKind stepKind(std::string_view loadedFileType) {
    if (loadedFileType == "wmv") {
        return StepKind::Time;
    }
    if (loadedFileType == "avi" || loadedFileType == "mp4" || loadedFileType == "mov" ||
        loadedFileType == "mkv") {
        return StepKind::Frame;
    }
    return StepKind::None;
}

std::optional<std::string> videoFileType(std::string_view path) {
    const size_t dot = path.rfind('.');
    const size_t slash = path.find_last_of("/\\");
    if (dot == std::string_view::npos || (slash != std::string_view::npos && dot < slash)) {
        return std::nullopt;
    }
    const std::string ending = asciiLower(path.substr(dot + 1));
    for (std::string_view type : {"avi", "wmv", "mp4", "mov", "mkv"}) {
        if (ending == type) {
            return ending;
        }
    }
    return std::nullopt;
}

void regionPress(Region& region, int button, int shift, int value) {
    if (shift == kShiftAlone) {
        region.SelStart = value;
        region.SelLength = 0;
    }
    if (button == kRightButton) {
        region.SelStart = 0;
        region.SelLength = 0;
        region.RegionActive = false;
    }
}

void regionMove(Region& region, int shift, int value) {
    // A region cannot start at step 0: the length stays 0 there.
    if (shift == kShiftAlone && region.SelStart != 0 && value > region.SelStart) {
        region.SelLength = value - region.SelStart;
    }
}

void regionRelease(Region& region, int shift) {
    if (shift == kShiftAlone && region.SelLength > 0) {
        region.RegionActive = true;
    }
}

} // namespace ravelcue::playback
