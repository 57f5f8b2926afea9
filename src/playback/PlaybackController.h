#pragma once

#include "FileOpening.h"
#include "Stills.h"

#include <QObject>

class QAbstractButton;
class QMenu;

namespace ravelcue::markups {
class MarkerStore;
}
namespace ravelcue::ui {
struct WindowContext;
}

namespace ravelcue::playback {

class PlayerPanes;
class RunEditToolFrame;
class TimelineControl;
class Transport;

// The controls of the window that playback answers to, beside its own panes and tool frame.
struct PlaybackControls {
    QAbstractButton* cmdLoadVideo = nullptr;
    QAbstractButton* cmdLoadImage = nullptr;
    QMenu* mnuPopup = nullptr;
    PlayerMenus menus;
    Stills::TimeOfDay timeOfDay;
};

// Builds the handlers of playback (opening, transport, timeline, stills) and connects them to
// the buttons, menus, timer, players and pictures. UI thread only.
class PlaybackController : public QObject {
    Q_OBJECT
public:
    PlaybackController(ui::WindowContext& context, PlayerPanes& panes, RunEditToolFrame& frame,
                       markups::MarkerStore& markers, const PlaybackControls& controls,
                       QObject* parent);

    FileOpening& opening() { return *opening_; }
    Transport& transport() { return *transport_; }
    TimelineControl& timeline() { return *timeline_; }
    Stills& stills() { return *stills_; }

    // A press on a player's picture selects that player; the right button on a player that holds
    // a file opens the pop-up menu.
    void PlayerMouseDown(int player, int button);

private:
    void wirePlayers();

    ui::WindowContext& context_;
    QMenu* mnuPopup_;
    Transport* transport_ = nullptr;
    TimelineControl* timeline_ = nullptr;
    FileOpening* opening_ = nullptr;
    Stills* stills_ = nullptr;
};

} // namespace ravelcue::playback
