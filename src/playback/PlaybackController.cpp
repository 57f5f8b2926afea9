#include "PlaybackController.h"

#include "PlaybackRules.h"
#include "RunEditToolFrame.h"
#include "TimelineControl.h"
#include "Transport.h"
#include "platform/media/MediaInstances.h"
#include "platform/media/VideoView.h"
#include "platform/ui/WindowContext.h"

#include <QAbstractButton>
#include <QAction>
#include <QCursor>
#include <QListWidget>
#include <QMenu>
#include <QScrollBar>
#include <QTimer>

namespace ravelcue::playback {

PlaybackController::PlaybackController(ui::WindowContext& context, PlayerPanes& panes,
                                       RunEditToolFrame& frame, markups::MarkerStore& markers,
                                       const PlaybackControls& controls, QObject* parent)
    : QObject(parent)
    , context_(context)
    , mnuPopup_(controls.mnuPopup) {
    transport_ = new Transport(context, frame);
    timeline_ = new TimelineControl(context, *frame.slider1());
    opening_ = new FileOpening(context, panes, frame, *transport_, markers, controls.menus);
    stills_ = new Stills(
        context, controls.timeOfDay ? controls.timeOfDay : [] { return QTime::currentTime(); },
        this);

    connect(controls.cmdLoadVideo, &QAbstractButton::clicked, opening_,
            &FileOpening::cmdLoadVideo_Click);
    connect(controls.cmdLoadImage, &QAbstractButton::clicked, opening_,
            &FileOpening::cmdLoadImage_Click);
    for (int i = 0; i <= kCameraCount; ++i) {
        connect(controls.menus.mnuPlayer[static_cast<size_t>(i)], &QAction::triggered, opening_,
                [this, i] { opening_->mnuPlayer_Click(i); });
    }
    connect(controls.menus.mnuCaptureImage, &QAction::triggered, stills_,
            &Stills::mnuCaptureImage_Click);
    connect(controls.menus.mnuCaptureSet, &QAction::triggered, stills_,
            &Stills::mnuCaptureSet_Click);

    for (const char* key : {"Rewind", "StepBack", "Play", "StepForward", "Stop"}) {
        const QString button = QString::fromLatin1(key);
        connect(frame.button1(button), &QAction::triggered, transport_,
                [this, button] { transport_->Toolbar1_ButtonClick(button); });
    }
    connect(frame.lstSpeed()->verticalScrollBar(), &QScrollBar::valueChanged, transport_,
            &Transport::lstSpeed_Scroll);
    connect(frame.tmrSlider(), &QTimer::timeout, transport_, &Transport::tmrSlider_Timer);

    Timeline* slider = frame.slider1();
    connect(slider, &Timeline::mousePressed, timeline_, &TimelineControl::Slider1_MouseDown);
    connect(slider, &Timeline::mouseMoved, timeline_, &TimelineControl::Slider1_MouseMove);
    connect(slider, &Timeline::mouseReleased, timeline_, &TimelineControl::Slider1_MouseUp);
    connect(slider, &Timeline::scrolled, timeline_, &TimelineControl::Slider1_Scroll);

    wirePlayers();
}

void PlaybackController::wirePlayers() {
    for (int i = 0; i < kCameraCount; ++i) {
        media::PlayerInstance& player = context_.media.play(i);
        connect(&player, &media::PlayerInstance::PlayerEnd, transport_,
                [this, i] { transport_->PlayerEnd(i); });
        media::VideoView* view = player.view();
        connect(view, &media::VideoView::PictureDoubleClick, opening_,
                [this, i] { opening_->PictureDoubleClick(i); });
        connect(view, &media::VideoView::mousePressed, this,
                [this, i](int button, int, double, double) { PlayerMouseDown(i, button); });
    }
}

void PlaybackController::PlayerMouseDown(int player, int button) {
    AppState& state = context_.state;
    state.SelectedPlayer = player;
    if (button == kRightButton && state.PlayerEnable[static_cast<size_t>(player)]) {
        mnuPopup_->popup(QCursor::pos());
    }
}

} // namespace ravelcue::playback
