#pragma once

#include "Twips.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace ravelcue {

struct AppState;

struct PaneRect {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;

    int right() const { return left + width; }
    int bottom() const { return top + height; }
    bool operator==(const PaneRect&) const = default;
};

// Where the main window's panes, the pictures inside them and the tool frames stand, in pixels of
// the window's client area. The window copies it onto its widgets after every change.
struct PaneGeometry {
    std::array<PaneRect, 4> picCapture{};
    std::array<PaneRect, 4> picPlayer{};
    PaneRect picBreakSpeed;
    // Only the left and top of the tool frames are managed here.
    PaneRect fmCapturetb;
    PaneRect fmTrainingTB;
    PaneRect fmBreakSpeedTB;
    PaneRect fmRunEditTB;
    // Only the top and width of the slider are managed here.
    PaneRect Slider1;
    // The picture control inside each pane, relative to the pane.
    std::array<PaneRect, 4> captureVideo{};
    std::array<PaneRect, 4> playerVideo{};
    // Inside picBreakSpeed.
    PaneRect Picture1;
    PaneRect Picture2;
    int lblBreakStatusTop = 0;
};

// The window's outer size now and as start-up set it, in twips, and the screen's resolution.
struct WindowMetrics {
    double widthTwips = 0;
    double heightTwips = 0;
    double baseWidthTwips = 0;
    double baseHeightTwips = 0;
    TwipsScale scale;
};

inline constexpr int kPaneColumn = 152;
inline constexpr int kBaseSmallSide = 5000; // twips: a window this small keeps its layout

// Sets where the panes of a view stand: "SingleCamera", "QuadCamera", "SinglePlayer" or
// "QuadPlayer". The break speed pane and the tool frames are placed for every view.
void PlacePanes(PaneGeometry& geometry, std::string_view view);

// Sizes the panes of the current mode to the window's growth and lays out their inside. Returns
// false, changing nothing, when the window is at most 5000 twips in either direction.
bool FormResize(PaneGeometry& geometry, AppState& state, const WindowMetrics& window);

// Fits each picture of the current view into its pane, recomputes the players' scale factors,
// lays out the break speed pane and places the tool frames under the lowest pane of the view.
void LayoutPanes(PaneGeometry& geometry, AppState& state);

// The object names of the panes that the current mode shows ("picCapture_2", "picBreakSpeed").
std::vector<std::string> panesOfMode(const AppState& state);

} // namespace ravelcue
