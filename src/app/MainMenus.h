#pragma once

#include <array>

class QAction;
class QMainWindow;
class QMenu;

namespace ravelcue::app {

// The menu bar (Exit, Setup, Help) and the pop-up menu mnuPopup that a right press on a picture
// opens. Every entry's objectName is its program name; the entry of a submenu is the submenu's
// own action (mnuGridControl, mnuCameraSelect, mnuPlayerSelect).
struct MainMenus {
    QAction* mnuExit = nullptr;
    QAction* mnuSetup = nullptr;
    QMenu* mnHelp = nullptr;
    QAction* mnuContents = nullptr;
    QAction* mnuWebSite = nullptr;
    QAction* mnuUpdateCheck = nullptr;
    QAction* mnuAbout = nullptr;

    QMenu* mnuPopup = nullptr;
    QAction* mnuCaptureImage = nullptr;
    QAction* mnuCaptureSet = nullptr;
    QAction* mnuSaveVideo = nullptr;
    QAction* mnuZoomPan = nullptr;
    QMenu* mnuGridControl = nullptr;
    std::array<QAction*, 4> mnuGrid{};
    QMenu* mnuCameraSelect = nullptr;
    std::array<QAction*, 5> mnuCamera{};
    QMenu* mnuPlayerSelect = nullptr;
    std::array<QAction*, 5> mnuPlayer{};

    static MainMenus build(QMainWindow& window);
};

} // namespace ravelcue::app
