#include "FileDeleteLayout.h"

namespace ravelcue::utilities {

namespace {

constexpr double kMinimumWidth = 7500;
constexpr double kMinimumHeight = 4000;
constexpr double kButtonHeight = 375;
constexpr double kButtonWidth = 1095;
constexpr double kCheckHeight = 255;

void fitNameColumn(std::array<double, 3>& columns, double listWidth) {
    if (listWidth > 5100) {
        columns[0] = listWidth - columns[1] - columns[2] - 400;
    }
}

} // namespace

FileDeleteLayout fileDeleteDesign() {
    FileDeleteLayout l;
    l.Label1 = {0, 120, 3000, 285};
    l.Label2 = {120, 480, 3600, 255};
    l.Label3 = {0, 480, 3600, 255};
    l.lvVideoFiles = {120, 780, 0, 0};
    l.lvImageFiles = {0, 780, 0, 0};
    l.chkAllVideos = {120, 0, 2000, kCheckHeight};
    l.chkAllImages = {0, 0, 2000, kCheckHeight};
    l.cmdDelete = {0, 0, 2000, kButtonHeight};
    l.cmdOK = {0, 0, kButtonWidth, kButtonHeight};
    l.cmdCancel = {0, 0, kButtonWidth, kButtonHeight};
    l.cmdHelp = {0, 0, kButtonWidth, kButtonHeight};
    // The name is the widest column, then the date, then the size.
    l.videoColumns = {2800, 1200, 2500};
    l.imageColumns = {2800, 1200, 2500};
    return l;
}

FileDeleteLayout resizeFileDelete(const FileDeleteLayout& current, double width, double height) {
    FileDeleteLayout l = current;
    if (width < kMinimumWidth || height < kMinimumHeight) {
        return l;
    }
    const double listWidth = (width - 570) / 2;
    const double listHeight = height - 2370;
    l.lvVideoFiles.width = l.lvImageFiles.width = listWidth;
    l.lvVideoFiles.height = l.lvImageFiles.height = listHeight;
    l.lvImageFiles.left = l.lvVideoFiles.left + l.lvVideoFiles.width + 105;

    l.chkAllVideos.top = l.lvVideoFiles.top + l.lvVideoFiles.height + 105;
    l.chkAllImages.top = l.chkAllVideos.top;
    l.chkAllImages.left = l.lvImageFiles.left;
    l.Label3.left = l.chkAllImages.left;
    l.Label1.left = width / 2 - l.Label1.width / 2;

    l.cmdDelete.left = width / 2 - l.cmdDelete.width / 2;
    l.cmdDelete.top = height - 1065;
    l.cmdOK.top = l.cmdDelete.top;
    l.cmdOK.left = width - 1440;
    l.cmdHelp.top = height - 1545;
    l.cmdHelp.left = l.cmdOK.left;
    l.cmdCancel.top = l.cmdOK.top;
    l.cmdCancel.left = l.cmdOK.left - 1200;

    fitNameColumn(l.videoColumns, l.lvVideoFiles.width);
    fitNameColumn(l.imageColumns, l.lvImageFiles.width);
    return l;
}

} // namespace ravelcue::utilities
