// Playback's part of the window: the marker store and the handlers of opening, transport,
// timeline and stills, given the window's buttons and menu entries.

#include "CommandStrip.h"
#include "MainWindow.h"
#include "markups/MarkerStore.h"
#include "playback/PlaybackController.h"
#include "playback/RunEditToolFrame.h"

#include <QMenu>
#include <QPushButton>

namespace ravelcue::app {

void MainWindow::buildPlayback() {
    markers_ = std::make_unique<markups::MarkerStore>(state_, media_);
    playback::PlaybackControls controls;
    controls.cmdLoadVideo = commandStrip_->cmdLoadVideo();
    controls.cmdLoadImage = commandStrip_->cmdLoadImage();
    controls.mnuPopup = menus_.mnuPopup;
    controls.menus.mnuPlayerSelect = menus_.mnuPlayerSelect->menuAction();
    controls.menus.mnuCaptureImage = menus_.mnuCaptureImage;
    controls.menus.mnuCaptureSet = menus_.mnuCaptureSet;
    controls.menus.mnuSaveVideo = menus_.mnuSaveVideo;
    controls.menus.mnuPlayer = menus_.mnuPlayer;
    playback_ = new playback::PlaybackController(context_, *playerPanes_, *runEdit_, *markers_,
                                                 controls, this);
}

} // namespace ravelcue::app
