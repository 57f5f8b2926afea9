#include "FileOpening.h"

#include "PlayerPanes.h"
#include "RunEditToolFrame.h"
#include "TimelineControl.h"
#include "Transport.h"
#include "core/AppSettings.h"
#include "core/ModeMachine.h"
#include "core/PaneLayout.h"
#include "markups/MarkerStore.h"
#include "platform/media/MediaInstances.h"
#include "platform/media/VideoView.h"
#include "platform/ui/Prompts.h"
#include "platform/ui/StatusPanels.h"
#include "platform/ui/WindowContext.h"

#include <algorithm>

#include <QAction>
#include <QFileInfo>
#include <QFrame>
#include <QTimer>

namespace ravelcue::playback {

namespace {

QString qtext(const std::string& text) {
    return QString::fromStdString(text);
}

bool fileExists(const std::string& path) {
    return QFileInfo(qtext(path)).isFile();
}

} // namespace

FileOpening::FileOpening(ui::WindowContext& context, PlayerPanes& panes, RunEditToolFrame& frame,
                         Transport& transport, markups::MarkerStore& markers,
                         const PlayerMenus& menus)
    : QObject(&panes)
    , context_(context)
    , panes_(panes)
    , frame_(frame)
    , transport_(transport)
    , markers_(markers)
    , menus_(menus) {
    for (int i = 0; i < kCameraCount; ++i) {
        connect(&context_.media.play(i), &media::PlayerInstance::lengthKnown, this,
                [this, i] { lengthKnown(i); });
    }
}

std::optional<std::string> FileOpening::askForFile(bool video) {
    const AppState& state = context_.state;
    ui::OpenFileRequest request;
    if (video) {
        request.title = QStringLiteral("Load Video File");
        request.folder = qtext(state.AppDataDir) + QStringLiteral("/Videos");
        request.fileName = qtext(state.CurrentVideoFile);
        request.filter = qtext(videoFilter(context_.settings.CaptureType));
        // Recordings may be wmv, yet the name box adds ".avi" to a bare name.
        request.defaultSuffix = QStringLiteral("avi");
    } else {
        request.title = QStringLiteral("Load Image File");
        request.folder = qtext(state.AppDataDir) + QStringLiteral("/Images");
        request.fileName = qtext(state.CurrentImageFile);
        request.filter = qtext(imageFilter());
        request.defaultSuffix = QStringLiteral("jpg");
    }
    const std::optional<QString> chosen = context_.prompts.openFile(request);
    if (!chosen || chosen->isEmpty()) {
        return std::nullopt;
    }
    return chosen->toStdString();
}

Nicknames FileOpening::nicknames() const {
    return context_.settings.CamNickname;
}

bool FileOpening::reportMissingSet(const OpenPlan& plan) {
    if (!plan.isSet() || plan.presentCount() > 0) {
        return false;
    }
    context_.prompts.message(QStringLiteral("No file Set found for that file name.\n"
                                            "Select another file Set or select Single file."),
                             ui::MessageIcon::Exclamation);
    return true;
}

void FileOpening::takeSetMembers(const OpenPlan& plan) {
    for (size_t i = 0; i < plan.present.size(); ++i) {
        context_.state.PlayerEnable[i] = plan.present[i];
        menus_.mnuPlayer[i]->setEnabled(plan.present[i]);
        // Setup may have renamed the cameras since start-up.
        menus_.mnuPlayer[i]->setText(qtext(context_.settings.CamNickname[i]));
    }
}

void FileOpening::prepareOpen() {
    // The players about to be filled start stopped, so the transport must not run on.
    frame_.tmrSlider()->stop();
}

bool FileOpening::openPlayer(int player, const std::string& path) {
    media::PlayerInstance& instance = context_.media.play(player);
    if (const media::MediaError error = instance.PlayerOpen(qtext(path)); !error.ok()) {
        // The number as the program has always shown it, then what a user can act on.
        context_.prompts.message(
            QStringLiteral("Error - %1\n%2: %3").arg(error.number).arg(qtext(path), error.text),
            ui::MessageIcon::Critical);
        return false;
    }
    AppState& state = context_.state;
    const auto k = static_cast<size_t>(player);
    const QSize size = instance.PlayerGetSize();
    state.VideoWidth[k] = size.width();
    state.VideoHeight[k] = size.height();
    markers_.fitOverlay(player, size);
    const PaneRect& fitted = context_.geometry.playerVideo[k];
    const int width = fitted.width > 0 ? fitted.width : instance.view()->width();
    const int height = fitted.height > 0 ? fitted.height : instance.view()->height();
    state.PlayerScaleX[k] = width > 0 ? static_cast<float>(size.width()) / width : 0.0F;
    state.PlayerScaleY[k] = height > 0 ? static_cast<float>(size.height()) / height : 0.0F;
    return true;
}

void FileOpening::closePlayer(int player) {
    context_.media.play(player).PlayerClose();
}

void FileOpening::showSinglePlayerAloneIfOnlyOne(const OpenPlan& plan) {
    if (plan.presentCount() == 1) {
        mnuPlayer_Click(plan.firstPresent());
    }
}

void FileOpening::setMenuEntries(Opened opened) {
    const bool set = opened == Opened::VideoSet || opened == Opened::ImageSet;
    const bool video = opened == Opened::SingleVideo || opened == Opened::VideoSet;
    menus_.mnuPlayerSelect->setEnabled(set);
    menus_.mnuCaptureImage->setEnabled(true);
    menus_.mnuCaptureSet->setEnabled(set);
    menus_.mnuSaveVideo->setEnabled(video);
}

void FileOpening::resetTools() {
    markers_.tools().chooseTool(markups::ShapeLine, nullptr);
    markers_.ClearMarkers();
    transport_.setPlayButton(false);
    frame_.button2(QStringLiteral("Line"))->setChecked(true);
}

void FileOpening::resetTimeline() {
    Timeline& slider = *frame_.slider1();
    applyRegion(slider, context_.state, Region{});
    slider.moveThumb(0);
}

void FileOpening::showVideoStatus(const std::string& title) {
    const int index = indexPlayer(context_.state);
    const auto k = static_cast<size_t>(index);
    const media::PlayerInstance& player = context_.media.play(index);
    ui::StatusPanels& status = context_.status;
    status.setPanel(1, QStringLiteral("Video View"));
    status.setPanel(2, qtext(title));
    status.setPanel(3, qtext(sizeText(context_.state.VideoWidth[k], context_.state.VideoHeight[k],
                                      player.PlayerGetFrameCount(), player.PlayerGetDuration())));
    status.setPanel(4, QString());
    transport_.showPositionText();
}

void FileOpening::showImageStatus(const std::string& title) {
    ui::StatusPanels& status = context_.status;
    status.setPanel(1, QStringLiteral("Image View"));
    status.setPanel(2, qtext(title));
    status.setPanel(3, QString());
    status.setPanel(4, QString());
    status.setPanel(5, QStringLiteral("To Zoom and Pan, right click on image"));
}

void FileOpening::cmdLoadVideo_Click() {
    const std::optional<std::string> picked = askForFile(true);
    if (!picked) {
        return;
    }
    const std::string& path = *picked;
    const OpenPlan plan = planVideoOpen(path, nicknames(), fileExists);
    if (reportMissingSet(plan)) {
        return;
    }
    prepareOpen();
    AppState& state = context_.state;
    state.CurrentVideoFile = path;
    if (plan.isSet()) {
        takeSetMembers(plan);
        state.ReferencePlayer = plan.firstPresent();
        state.PlayerView = "QuadPlayer";
        PlacePanes(context_.geometry, "QuadPlayer");
        setMenuEntries(Opened::VideoSet);
    } else {
        state.PlayerView = "SinglePlayer";
        state.PlayerEnable[0] = true;
        state.SelectedPlayer = 0;
        PlacePanes(context_.geometry, "SinglePlayer");
        setMenuEntries(Opened::SingleVideo);
    }
    if (const std::optional<std::string> type = videoFileType(path)) {
        state.LoadedFileType = *type;
    }
    context_.mode.State("PlayVideoFile");
    resetTools();

    std::string title = plan.title;
    if (plan.isSet()) {
        for (int i = 0; i < kCameraCount; ++i) {
            if (!plan.present[static_cast<size_t>(i)]) {
                closePlayer(i);
            } else if (!openPlayer(i, plan.members[static_cast<size_t>(i)])) {
                return;
            }
        }
        title += state.LoadedFileType;
        showSinglePlayerAloneIfOnlyOne(plan);
    } else {
        for (int i = 1; i < kCameraCount; ++i) {
            closePlayer(i);
        }
        if (!openPlayer(state.SelectedPlayer, path)) {
            return;
        }
    }

    resetTimeline();
    state.PanX = 0;
    state.PanY = 0;
    showVideoStatus(title);
    frame_.slider1()->setSteps(
        sliderStep(context_.media.play(indexPlayer(state)).PlayerGetDuration()));
}

void FileOpening::lengthKnown(int player) {
    AppState& state = context_.state;
    if (state.CurrentState != "PlayVideoFile" || player != indexPlayer(state)) {
        return;
    }
    const media::PlayerInstance& instance = context_.media.play(player);
    Timeline& slider = *frame_.slider1();
    slider.setSteps(sliderStep(instance.PlayerGetDuration()));
    // A region drawn meanwhile ends within the timeline.
    Region region = regionOf(slider, state);
    region.SelStart = std::min(region.SelStart, slider.maximum());
    region.SelLength = std::min(region.SelLength, slider.maximum() - region.SelStart);
    applyRegion(slider, state, region);
    const auto k = static_cast<size_t>(player);
    context_.status.setPanel(
        3, qtext(sizeText(state.VideoWidth[k], state.VideoHeight[k], instance.PlayerGetFrameCount(),
                          instance.PlayerGetDuration())));
    transport_.showPositionText();
}

void FileOpening::cmdLoadImage_Click() {
    const std::optional<std::string> picked = askForFile(false);
    if (!picked) {
        return;
    }
    const std::string& path = *picked;
    const OpenPlan plan = planImageOpen(path, nicknames(), fileExists);
    if (reportMissingSet(plan)) {
        return;
    }
    prepareOpen();
    AppState& state = context_.state;
    state.CurrentImageFile = path;
    if (!plan.isSet()) {
        state.PlayerView = "SinglePlayer";
        state.SelectedPlayer = 0;
        // Player 0 holds the picture now, for the pop-up menu and the markers alike.
        state.PlayerEnable[0] = true;
        PlacePanes(context_.geometry, "SinglePlayer");
        context_.mode.State("LoadImageFile");
        if (!openPlayer(0, path)) {
            return;
        }
        setMenuEntries(Opened::SingleImage);
        for (int i = 1; i < kCameraCount; ++i) {
            closePlayer(i);
        }
    } else {
        state.PlayerView = "QuadPlayer";
        PlacePanes(context_.geometry, "QuadPlayer");
        context_.mode.State("LoadImageFile");
        takeSetMembers(plan);
        for (int i = 0; i < kCameraCount; ++i) {
            if (!plan.present[static_cast<size_t>(i)]) {
                closePlayer(i);
            } else if (!openPlayer(i, plan.members[static_cast<size_t>(i)])) {
                return;
            }
        }
        showSinglePlayerAloneIfOnlyOne(plan);
        setMenuEntries(Opened::ImageSet);
    }
    state.PanX = 0;
    state.PanY = 0;
    resetTools();
    state.LoadedFileType = "img";
    showImageStatus(plan.title);
}

void FileOpening::mnuPlayer_Click(int index) {
    if (index < 0 || index > kCameraCount) {
        return;
    }
    AppState& state = context_.state;
    for (int i = 0; i < kCameraCount; ++i) {
        panes_.pane(i)->hide();
        menus_.mnuPlayer[static_cast<size_t>(i)]->setEnabled(
            state.PlayerEnable[static_cast<size_t>(i)]);
    }
    const bool all = index == kCameraCount;
    menus_.mnuPlayer[kCameraCount]->setEnabled(!all);
    state.PlayerView = all ? "QuadPlayer" : "SinglePlayer";
    if (!all) {
        state.SelectedPlayer = index;
    }
    PlacePanes(context_.geometry, state.PlayerView);
    context_.mode.FormResize();
}

void FileOpening::PictureDoubleClick(int index) {
    const AppState& state = context_.state;
    if (state.PlayerView == "SinglePlayer") {
        if (state.CurrentState == "PlayVideoFile" || state.CurrentState == "LoadImageFile") {
            mnuPlayer_Click(kCameraCount);
        }
    } else if (state.PlayerEnable[static_cast<size_t>(index)]) {
        // An empty pane cannot be shown alone, as its menu entry cannot be chosen.
        mnuPlayer_Click(index);
    }
}

} // namespace ravelcue::playback
