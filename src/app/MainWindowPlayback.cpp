// Playback's part of the window: the marker store and the handlers of opening, transport,
// timeline and stills, given the window's buttons and menu entries; then the markups over the
// players' pictures, which answer to Toolbar2 and the pop-up menu.

#include "CommandStrip.h"
#include "MainWindow.h"
#include "markups/MarkerStore.h"
#include "markups/MarkupsController.h"
#include "platform/ui/HelpWindow.h"
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

    markups::MarkupControls markupControls;
    markupControls.window = this;
    for (const char* key : {"Line", "Vline", "Hline", "Freehand", "Angle", "Ellipse", "Rectangle",
                            "Text", "Color", "Erase"}) {
        const QString name = QString::fromLatin1(key);
        markupControls.toolbar2[name] = runEdit_->button2(name);
    }
    markupControls.mnuSaveVideo = menus_.mnuSaveVideo;
    markupControls.mnuZoomPan = menus_.mnuZoomPan;
    markupControls.mnuGrid = menus_.mnuGrid;
    markupControls.region = [this] {
        const playback::Timeline& slider = *runEdit_->slider1();
        if (!state_.RegionActive) {
            return std::pair<double, double>{0.0, 0.0};
        }
        return std::pair<double, double>{slider.SelStart() * 100.0,
                                         (slider.SelStart() + slider.SelLength()) * 100.0};
    };
    markupControls.showHelp = [this](int topic) {
        if (help_) {
            help_->showTopic(topic);
        }
    };
    new markups::MarkupsController(context_, *markers_, markupControls, this);
}

} // namespace ravelcue::app
