#pragma once

#include "PlaybackRules.h"

#include <QObject>
#include <QString>

class QTimer;
class QWidget;

namespace ravelcue::media {
class PlayerInstance;
}
namespace ravelcue::ui {
struct WindowContext;
}

namespace ravelcue::playback {

class RunEditToolFrame;

// The transport of a loaded video: the buttons of Toolbar1, the speed list, the loop box, the
// slider's timer and the end of a file. Every command goes to the active players in index order
// and nothing else ties them together; what is shown follows the index player. The tool tip of
// the Play button remembers whether the transport plays. The keyboard drives it too: Space,
// Left, Right, Home, and [ and ] for the speed. UI thread only.
class Transport : public QObject {
    Q_OBJECT
public:
    Transport(ui::WindowContext& context, RunEditToolFrame& frame);

    // key: "Rewind", "StepBack", "Play", "StepForward", "Stop".
    void Toolbar1_ButtonClick(const QString& key);
    void lstSpeed_Scroll();
    void tmrSlider_Timer();
    // From any player: the end of one file acts for all.
    void PlayerEnd(int index);

    // The Play button as it stands while playing (image "Pause") or not (image "Play").
    void setPlayButton(bool playing);
    bool isPlaying() const;
    // The thumb to the index player's position, and the position text. While the index player
    // is busy both keep their values, and are brought up to date as soon as it answers.
    void positionUpdate();
    void showPositionText();

private:
    void showPosition(bool withThumb);
    void play();
    void pause();
    void stop();
    void rewind();
    void step(int direction);
    void stepSpeed(int direction);
    void installKeys();
    bool transportShown() const;
    media::PlayerInstance& player(int i) const;
    template <typename Call>
    void toActivePlayers(Call call) const;

    ui::WindowContext& context_;
    RunEditToolFrame& frame_;
    QTimer* catchUp_;
};

} // namespace ravelcue::playback
