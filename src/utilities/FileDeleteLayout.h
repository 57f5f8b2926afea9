#pragma once

#include <array>
#include <optional>

namespace ravelcue::utilities {

// A control's place in twips, relative to the dialog's client area.
struct TwipsRect {
    double left = 0;
    double top = 0;
    double width = 0;
    double height = 0;

    bool operator==(const TwipsRect&) const = default;
};

// Where the controls of the Delete Files dialog stand, in twips. The column widths are those of
// "File Name", the size and the date.
struct FileDeleteLayout {
    TwipsRect Label1, Label2, Label3;
    TwipsRect lvVideoFiles, lvImageFiles;
    TwipsRect chkAllVideos, chkAllImages;
    TwipsRect cmdDelete, cmdOK, cmdCancel, cmdHelp;
    std::array<double, 3> videoColumns{};
    std::array<double, 3> imageColumns{};
};

// The rules count the window's outer size; a sizable window's frame and title add about this much
// to its client area.
inline constexpr double kFrameWidthTwips = 240;
inline constexpr double kFrameHeightTwips = 570;
// The outer size the dialog opens at.
inline constexpr double kDesignWidthTwips = 14400;
inline constexpr double kDesignHeightTwips = 7200;

// The layout as drawn, before the first resize.
FileDeleteLayout fileDeleteDesign();

// The layout after the window took the outer size width x height (twips), from the current one:
// the lists share the width and take the height, the rows of controls under them follow, the
// buttons keep to the bottom right, the headings stay centred or over their lists, and the file
// name column takes what the other two columns leave of a list wider than 5100. Below 7500 x 4000
// nothing moves: the result is the current layout.
FileDeleteLayout resizeFileDelete(const FileDeleteLayout& current, double width, double height);

} // namespace ravelcue::utilities
