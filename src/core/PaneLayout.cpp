#include "PaneLayout.h"

#include "AppState.h"
#include "ModeMachine.h"
#include "Rounding.h"

namespace ravelcue {

namespace {

constexpr int kBasePaneWidth = 800;
constexpr int kBasePaneHeight = 600;

void placeQuad(std::array<PaneRect, 4>& panes) {
    const std::array<std::array<int, 2>, 4> positions{{{152, 0}, {552, 0}, {152, 300}, {552, 300}}};
    for (size_t i = 0; i < panes.size(); ++i) {
        panes[i].left = positions[i][0];
        panes[i].top = positions[i][1];
    }
}

void placeSingle(std::array<PaneRect, 4>& panes) {
    for (PaneRect& pane : panes) {
        pane.left = kPaneColumn;
        pane.top = 0;
    }
}

void closeQuadGrid(std::array<PaneRect, 4>& panes) {
    panes[1].left = panes[0].left + panes[0].width;
    panes[3].left = panes[2].left + panes[2].width;
    panes[2].top = panes[0].top + panes[0].height;
    panes[3].top = panes[1].top + panes[1].height;
}

// The picture keeps a 4:3 shape: full pane height, unless that is wider than the pane.
PaneRect fitPicture(const PaneRect& pane) {
    double height = pane.height;
    double width = height * 1.333;
    if (width > pane.width) {
        width = pane.width;
        height = width * 0.75;
    }
    const double left = pane.width / 2.0 - width / 2.0;
    const double top = pane.height / 2.0 - height / 2.0;
    return {roundToInt(left), roundToInt(top), roundToInt(width), roundToInt(height)};
}

bool isQuad(const AppState& state, ModeGroup group) {
    return group == ModeGroup::Player ? state.PlayerView == "QuadPlayer"
                                      : state.CameraView == "QuadCamera";
}

} // namespace

void PlacePanes(PaneGeometry& geometry, std::string_view view) {
    if (view == "SingleCamera") {
        placeSingle(geometry.picCapture);
    } else if (view == "QuadCamera") {
        placeQuad(geometry.picCapture);
    } else if (view == "SinglePlayer") {
        placeSingle(geometry.picPlayer);
    } else if (view == "QuadPlayer") {
        placeQuad(geometry.picPlayer);
    }
    geometry.picBreakSpeed.left = kPaneColumn;
    geometry.picBreakSpeed.top = 0;
    for (PaneRect* frame : {&geometry.fmCapturetb, &geometry.fmRunEditTB, &geometry.fmTrainingTB,
                            &geometry.fmBreakSpeedTB}) {
        frame->left = kPaneColumn;
        frame->top = kBasePaneHeight;
    }
}

bool FormResize(PaneGeometry& geometry, AppState& state, const WindowMetrics& window) {
    if (window.widthTwips <= kBaseSmallSide || window.heightTwips <= kBaseSmallSide) {
        return false;
    }
    const double dx = window.scale.toPixelsX(window.widthTwips - window.baseWidthTwips);
    const double dy = window.scale.toPixelsY(window.heightTwips - window.baseHeightTwips);
    const int fullWidth = roundToInt(kBasePaneWidth + dx);
    const int fullHeight = roundToInt(kBasePaneHeight + dy);
    const int halfWidth = roundToInt((kBasePaneWidth + dx) / 2.0);
    const int halfHeight = roundToInt((kBasePaneHeight + dy) / 2.0);

    const ModeGroup group = modeGroup(state.CurrentState);
    auto sizeAll = [&](std::array<PaneRect, 4>& panes) {
        for (PaneRect& pane : panes) {
            pane.width = halfWidth;
            pane.height = halfHeight;
        }
        closeQuadGrid(panes);
    };
    auto sizeOne = [&](PaneRect& pane) {
        pane.width = fullWidth;
        pane.height = fullHeight;
    };
    switch (group) {
    case ModeGroup::BreakSpeed:
        sizeOne(geometry.picBreakSpeed);
        break;
    case ModeGroup::Player:
        if (isQuad(state, group)) {
            sizeAll(geometry.picPlayer);
        } else {
            sizeOne(geometry.picPlayer.at(static_cast<size_t>(state.SelectedPlayer)));
        }
        break;
    case ModeGroup::Camera:
        if (isQuad(state, group)) {
            sizeAll(geometry.picCapture);
        } else {
            sizeOne(geometry.picCapture.at(static_cast<size_t>(state.SelectedCam)));
        }
        break;
    case ModeGroup::None:
        break;
    }
    LayoutPanes(geometry, state);
    return true;
}

void LayoutPanes(PaneGeometry& geometry, AppState& state) {
    const ModeGroup group = modeGroup(state.CurrentState);
    const bool quad = isQuad(state, group);

    if (group == ModeGroup::Camera || group == ModeGroup::Player) {
        const bool players = group == ModeGroup::Player;
        auto& panes = players ? geometry.picPlayer : geometry.picCapture;
        auto& videos = players ? geometry.playerVideo : geometry.captureVideo;
        const int selected = players ? state.SelectedPlayer : state.SelectedCam;
        for (int i = 0; i < 4; ++i) {
            if (!quad && i != selected) {
                continue;
            }
            const auto k = static_cast<size_t>(i);
            videos[k] = fitPicture(panes[k]);
            if (players && videos[k].width > 0 && videos[k].height > 0) {
                state.PlayerScaleX[k] =
                    static_cast<float>(state.VideoWidth[k]) / static_cast<float>(videos[k].width);
                state.PlayerScaleY[k] =
                    static_cast<float>(state.VideoHeight[k]) / static_cast<float>(videos[k].height);
            }
        }
    }

    const PaneRect& breakPane = geometry.picBreakSpeed;
    const int viewHeight = roundToInt(breakPane.height / 2.0 - 14);
    geometry.Picture1 = {0, 0, breakPane.width, viewHeight};
    const int secondTop = roundToInt(breakPane.height / 2.0 + 20);
    geometry.Picture2 = {0, secondTop, breakPane.width, viewHeight};
    geometry.lblBreakStatusTop = secondTop - 24;

    switch (group) {
    case ModeGroup::BreakSpeed:
        geometry.fmBreakSpeedTB.top = breakPane.bottom();
        break;
    case ModeGroup::Player: {
        const PaneRect& reference =
            quad ? geometry.picPlayer[2]
                 : geometry.picPlayer.at(static_cast<size_t>(state.SelectedPlayer));
        geometry.fmRunEditTB.top = reference.bottom();
        geometry.Slider1.top = reference.bottom() - 35;
        geometry.Slider1.width =
            quad ? geometry.picPlayer[3].width + geometry.picPlayer[2].width : reference.width;
        break;
    }
    case ModeGroup::Camera: {
        const PaneRect& reference =
            quad ? geometry.picCapture[2]
                 : geometry.picCapture.at(static_cast<size_t>(state.SelectedCam));
        geometry.fmCapturetb.top = reference.bottom();
        geometry.fmTrainingTB.top = reference.bottom();
        break;
    }
    case ModeGroup::None:
        break;
    }
}

std::vector<std::string> panesOfMode(const AppState& state) {
    const ModeGroup group = modeGroup(state.CurrentState);
    std::vector<std::string> panes;
    auto addAll = [&](std::string_view name) {
        for (int i = 0; i < 4; ++i) {
            panes.push_back(std::string(name) + "_" + std::to_string(i));
        }
    };
    switch (group) {
    case ModeGroup::BreakSpeed:
        panes.emplace_back("picBreakSpeed");
        break;
    case ModeGroup::Player:
        if (state.PlayerView == "QuadPlayer") {
            addAll("picPlayer");
        } else {
            panes.push_back("picPlayer_" + std::to_string(state.SelectedPlayer));
        }
        break;
    case ModeGroup::Camera:
        if (state.CameraView == "QuadCamera") {
            addAll("picCapture");
        } else {
            panes.push_back("picCapture_" + std::to_string(state.SelectedCam));
        }
        break;
    case ModeGroup::None:
        break;
    }
    return panes;
}

} // namespace ravelcue
