#include "Transport.h"

#include "PlayerAnswers.h"
#include "RunEditToolFrame.h"
#include "TimelineControl.h"
#include "platform/media/MediaInstances.h"
#include "platform/ui/Icons.h"
#include "platform/ui/StatusPanels.h"
#include "platform/ui/WindowContext.h"

#include <algorithm>

#include <QAction>
#include <QCheckBox>
#include <QListWidget>
#include <QShortcut>
#include <QTimer>
#include <QToolBar>

namespace ravelcue::playback {

namespace {

const QString kPlayTip = QStringLiteral("Play Video");
const QString kPauseTip = QStringLiteral("Pause Video");

QString withKey(const QString& tip, const QString& key) {
    return tip + QStringLiteral(" (") + key + QLatin1Char(')');
}

} // namespace

Transport::Transport(ui::WindowContext& context, RunEditToolFrame& frame)
    : QObject(frame.frame())
    , context_(context)
    , frame_(frame)
    , catchUp_(new QTimer(this)) {
    // Each try waits up to a frame period for the player, so a short pause between them does.
    catchUp_->setSingleShot(true);
    catchUp_->setInterval(10);
    connect(catchUp_, &QTimer::timeout, this, [this] {
        if (!frame_.tmrSlider()->isActive()) {
            positionUpdate();
        }
    });
    installKeys();
    setPlayButton(false);
}

void Transport::installKeys() {
    struct Key {
        const char* button;
        Qt::Key key;
        const char* name;
    };
    static constexpr Key kKeys[] = {{"Rewind", Qt::Key_Home, "Home"},
                                    {"StepBack", Qt::Key_Left, "Left"},
                                    {"Play", Qt::Key_Space, "Space"},
                                    {"StepForward", Qt::Key_Right, "Right"}};
    QToolBar* bar = frame_.toolbar1();
    for (const Key& k : kKeys) {
        const QString button = QString::fromLatin1(k.button);
        auto* shortcut = new QShortcut(QKeySequence(k.key), bar);
        shortcut->setObjectName(QStringLiteral("key") + button);
        shortcut->setContext(Qt::WindowShortcut);
        connect(shortcut, &QShortcut::activated, this, [this, button] {
            if (transportShown()) {
                Toolbar1_ButtonClick(button);
            }
        });
        if (button != QLatin1String("Play")) {
            QAction* action = frame_.button1(button);
            action->setToolTip(withKey(action->toolTip(), QString::fromLatin1(k.name)));
        }
    }
    QListWidget* speeds = frame_.lstSpeed();
    for (const auto& [key, direction] :
         {std::pair{Qt::Key_BracketLeft, 1}, std::pair{Qt::Key_BracketRight, -1}}) {
        auto* shortcut = new QShortcut(QKeySequence(key), bar);
        shortcut->setObjectName(direction > 0 ? QStringLiteral("keySlower")
                                              : QStringLiteral("keyFaster"));
        shortcut->setContext(Qt::WindowShortcut);
        connect(shortcut, &QShortcut::activated, this, [this, direction] {
            if (transportShown()) {
                stepSpeed(direction);
            }
        });
    }
    speeds->setToolTip(speeds->toolTip() + QStringLiteral(" ([ slower, ] faster)"));
}

bool Transport::transportShown() const {
    return context_.state.CurrentState == "PlayVideoFile";
}

media::PlayerInstance& Transport::player(int i) const {
    return context_.media.play(i);
}

template <typename Call>
void Transport::toActivePlayers(Call call) const {
    for (int i : activePlayers(context_.state)) {
        call(player(i));
    }
}

void Transport::setPlayButton(bool playing) {
    QAction* play = frame_.button1(QStringLiteral("Play"));
    const QString image = playing ? QStringLiteral("Pause") : QStringLiteral("Play");
    play->setIcon(ui::toolbarIcon(image));
    play->setProperty("image", image);
    play->setToolTip(withKey(playing ? kPauseTip : kPlayTip, QStringLiteral("Space")));
}

bool Transport::isPlaying() const {
    return frame_.button1(QStringLiteral("Play"))->toolTip().startsWith(kPauseTip);
}

void Transport::showPositionText() {
    showPosition(false);
}

void Transport::positionUpdate() {
    showPosition(true);
}

void Transport::showPosition(bool withThumb) {
    const int index = indexPlayer(context_.state);
    if (!playerAnswers(context_, index)) {
        catchUp_->start(); // unless the slider's timer ticks anyway
        return;
    }
    if (withThumb) {
        frame_.slider1()->moveThumb(sliderStep(player(index).PlayerGetPos()));
    }
    playback::showPositionText(context_); // answers at once now
}

void Transport::Toolbar1_ButtonClick(const QString& key) {
    if (key == QLatin1String("Play")) {
        if (isPlaying()) {
            pause();
        } else {
            play();
        }
    } else if (key == QLatin1String("Stop")) {
        stop();
    } else if (key == QLatin1String("Rewind")) {
        rewind();
    } else if (key == QLatin1String("StepForward")) {
        step(1);
    } else if (key == QLatin1String("StepBack")) {
        step(-1);
    }
}

void Transport::play() {
    context_.status.setPanel(1, QStringLiteral("Video Play"));
    setPlayButton(true);
    Timeline& slider = *frame_.slider1();
    const Region region = regionOf(slider, context_.state);
    if (region.endedAt(slider.value())) {
        // Play restarts a region that has run out.
        toActivePlayers([&](media::PlayerInstance& p) {
            p.PlayerSetPos(static_cast<double>(region.SelStart) * kStepMs);
        });
        slider.moveThumb(region.SelStart);
    }
    // Nothing between the calls, so that the players of a Set start together.
    toActivePlayers([](media::PlayerInstance& p) { p.PlayerPlay(); });
    frame_.tmrSlider()->start();
}

void Transport::pause() {
    context_.status.setPanel(1, QStringLiteral("Video Paused"));
    setPlayButton(false);
    frame_.tmrSlider()->stop();
    toActivePlayers([](media::PlayerInstance& p) { p.PlayerStop(); });
}

void Transport::stop() {
    setPlayButton(false);
    context_.status.setPanel(1, QStringLiteral("Video Stopped"));
    frame_.tmrSlider()->stop();
    // To a player stop and pause are one call: Stop does not rewind.
    toActivePlayers([](media::PlayerInstance& p) { p.PlayerStop(); });
}

void Transport::rewind() {
    setPlayButton(false);
    context_.status.setPanel(1, QStringLiteral("Video Rewind"));
    toActivePlayers([](media::PlayerInstance& p) { p.PlayerStop(); });
    frame_.tmrSlider()->stop();
    Timeline& slider = *frame_.slider1();
    const Region region = regionOf(slider, context_.state);
    if (!region.RegionActive) {
        toActivePlayers([](media::PlayerInstance& p) { p.PlayerSetFrame(0.0); });
    } else {
        toActivePlayers([&](media::PlayerInstance& p) {
            p.PlayerSetPos(static_cast<double>(region.SelStart) * kStepMs);
        });
        slider.moveThumb(region.SelStart);
    }
    positionUpdate();
}

void Transport::step(int direction) {
    // Each player steps from where it stands, so offsets between them survive a step; while one
    // of them is busy none steps, or their offsets would change.
    const std::vector<int> players = activePlayers(context_.state);
    if (!std::all_of(players.begin(), players.end(),
                     [this](int i) { return playerAnswers(context_, i); })) {
        return;
    }
    switch (stepKind(context_.state.LoadedFileType)) {
    case StepKind::Frame:
        toActivePlayers([direction](media::PlayerInstance& p) {
            p.PlayerSetFrame(p.PlayerGetFrame() + direction);
        });
        break;
    case StepKind::Time:
        toActivePlayers([direction](media::PlayerInstance& p) {
            p.PlayerSetPos(p.PlayerGetPos() + direction * kStepMs);
        });
        break;
    case StepKind::None:
        break;
    }
    positionUpdate();
}

void Transport::lstSpeed_Scroll() {
    if (const std::optional<double> rate = speedRate(frame_.topSpeedIndex())) {
        toActivePlayers([&](media::PlayerInstance& p) { p.PlayerSetRate(*rate); });
    }
}

void Transport::stepSpeed(int direction) {
    const int last = static_cast<int>(kSpeedTexts.size()) - 1;
    frame_.scrollSpeedTo(std::clamp(frame_.topSpeedIndex() + direction, 0, last));
}

void Transport::tmrSlider_Timer() {
    Timeline& slider = *frame_.slider1();
    const Region region = regionOf(slider, context_.state);
    // The value the last tick wrote, so the end is seen one tick after the thumb reached it.
    if (region.endedAt(slider.value())) {
        if (frame_.chkLoop()->isChecked()) {
            toActivePlayers([&](media::PlayerInstance& p) {
                p.PlayerSetPos(static_cast<double>(region.SelStart) * kStepMs);
            });
            slider.moveThumb(region.SelStart);
        } else {
            frame_.tmrSlider()->stop();
            toActivePlayers([](media::PlayerInstance& p) { p.PlayerStop(); });
            slider.moveThumb(region.end());
            setPlayButton(false);
            context_.status.setPanel(1, QStringLiteral("Video Stopped"));
        }
    } else if (!slider.isSliderDown()) {
        // While the user holds the thumb it stays where the hand puts it.
        positionUpdate();
        return;
    }
    showPositionText();
}

void Transport::PlayerEnd(int) {
    // A file that ends after another kind of file was opened has nothing left to act on.
    if (!transportShown()) {
        return;
    }
    Timeline& slider = *frame_.slider1();
    const int selStart = slider.SelStart();
    if (frame_.chkLoop()->isChecked()) {
        // A loop over the end of the file starts the file again, also when a region starts later.
        toActivePlayers([](media::PlayerInstance& p) { p.PlayerSetPos(0.0); });
        slider.moveThumb(selStart);
    } else {
        setPlayButton(false);
        context_.status.setPanel(1, QStringLiteral("Video Rewind"));
        toActivePlayers([&](media::PlayerInstance& p) {
            p.PlayerStop();
            p.PlayerSetPos(static_cast<double>(selStart) * kStepMs);
        });
        frame_.tmrSlider()->stop();
        slider.moveThumb(selStart);
    }
    showPositionText();
}

} // namespace ravelcue::playback
