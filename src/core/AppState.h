#pragma once

#include <array>
#include <string>

namespace ravelcue {

inline constexpr int kCameraCount = 4;

// The run-time state every part of the window shares. One instance lives in the main window and
// is handed by reference to whoever needs it; only the UI thread touches it.
struct AppState {
    // Data folder for all users of the machine, without a trailing separator. Videos, Images,
    // breakspeed.wav and BreakSpeedLog.txt lie under it.
    std::string AppDataDir;
    // The path the open dialog returned (for a file Set, the member picked); after a capture the
    // bare base name.
    std::string CurrentVideoFile;
    std::string CurrentImageFile;
    // Last state word recorded; only the mode machine writes it.
    std::string CurrentState;
    std::string CameraView = "SingleCamera"; // or "QuadCamera"
    std::string PlayerView = "SinglePlayer"; // or "QuadPlayer"
    std::string LiveRenderMode = "Fast";     // "Slow" from "Training" until the next "Live"
    int SelectedCam = 0;
    int SelectedPlayer = 0;
    // Lowest player index holding a member of the opened file Set.
    int ReferencePlayer = 0;
    std::array<bool, kCameraCount> PlayerEnable{};
    std::string LoadedFileType; // "avi", "wmv", "mp4", "mov", "mkv" or "img"
    std::string LogSpeedText;
    std::string LogEnergyText;
    float PanX = 0.0F;
    float PanY = 0.0F;

    // Fields of the main window that several parts use.
    int BaseWidth = 0; // twips: the window's size as start-up set it
    int BaseHeight = 0;
    std::array<int, kCameraCount> VideoWidth{};
    std::array<int, kCameraCount> VideoHeight{};
    std::array<float, kCameraCount> PlayerScaleX{};
    std::array<float, kCameraCount> PlayerScaleY{};
    bool RegionActive = false;
};

} // namespace ravelcue
