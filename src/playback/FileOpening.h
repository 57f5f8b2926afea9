#pragma once

#include "OpenPlan.h"

#include <array>
#include <string>

#include <QObject>

class QAction;

namespace ravelcue::markups {
class MarkerStore;
}
namespace ravelcue::ui {
struct WindowContext;
}

namespace ravelcue::playback {

class PlayerPanes;
class RunEditToolFrame;
class Transport;

// The entries of the pop-up menu that an open sets.
struct PlayerMenus {
    QAction* mnuPlayerSelect = nullptr;
    QAction* mnuCaptureImage = nullptr;
    QAction* mnuCaptureSet = nullptr;
    QAction* mnuSaveVideo = nullptr;
    // 0..3 the players, 4 all of them.
    std::array<QAction*, 5> mnuPlayer{};
};

// Opening a video, an image, a file Set or an image Set into the players, and the choice between
// one player and all four. An open leaves every player it fills on its first frame, stopped, the
// timeline without a region, and the markers cleared. UI thread only.
class FileOpening : public QObject {
    Q_OBJECT
public:
    FileOpening(ui::WindowContext& context, PlayerPanes& panes, RunEditToolFrame& frame,
                Transport& transport, markups::MarkerStore& markers, const PlayerMenus& menus);

    void cmdLoadVideo_Click();
    void cmdLoadImage_Click();
    // 0..3 shows that player alone, 4 shows all. No player is touched.
    void mnuPlayer_Click(int index);
    void PictureDoubleClick(int index);
    // A long video opens on the header's estimate of its length; when the player has counted its
    // frames, the timeline, its region and the status take the exact length.
    void lengthKnown(int player);

private:
    enum class Opened { SingleVideo, VideoSet, SingleImage, ImageSet };

    std::optional<std::string> askForFile(bool video);
    Nicknames nicknames() const;
    bool reportMissingSet(const OpenPlan& plan);
    void takeSetMembers(const OpenPlan& plan);
    void prepareOpen();
    // Opens a file into a player and takes its size; false after telling the user why not.
    bool openPlayer(int player, const std::string& path);
    void closePlayer(int player);
    void showSinglePlayerAloneIfOnlyOne(const OpenPlan& plan);
    void setMenuEntries(Opened opened);
    void resetTools();
    void resetTimeline();
    void showVideoStatus(const std::string& title);
    void showImageStatus(const std::string& title);

    ui::WindowContext& context_;
    PlayerPanes& panes_;
    RunEditToolFrame& frame_;
    Transport& transport_;
    markups::MarkerStore& markers_;
    PlayerMenus menus_;
};

} // namespace ravelcue::playback
