#include "MarkupsController.h"

#include "GridLattice.h"
#include "MarkerStore.h"
#include "TextInputDialog.h"
#include "ZoomPanDialog.h"
#include "core/AppSettings.h"
#include "core/AppState.h"
#include "platform/media/MediaInstances.h"
#include "platform/media/VideoView.h"
#include "platform/ui/Prompts.h"
#include "platform/ui/WindowContext.h"

#include <QAction>
#include <QActionGroup>
#include <QKeySequence>
#include <QMenu>
#include <QShortcut>

namespace ravelcue::markups {

namespace {

constexpr int kLeft = 1;
constexpr int kRight = 2;
constexpr int kMiddle = 4;

const std::map<QString, int>& toolShapes() {
    static const std::map<QString, int> shapes = {
        {QStringLiteral("Line"), ShapeLine},           {QStringLiteral("Vline"), ShapeVline},
        {QStringLiteral("Hline"), ShapeHline},         {QStringLiteral("Freehand"), ShapeFreehand},
        {QStringLiteral("Angle"), ShapeAngle},         {QStringLiteral("Ellipse"), ShapeEllipse},
        {QStringLiteral("Rectangle"), ShapeRectangle}, {QStringLiteral("Text"), ShapeText}};
    return shapes;
}

const std::map<QString, std::int32_t>& colourKeys() {
    static const std::map<QString, std::int32_t> colours = {
        {QStringLiteral("red"), 255},        {QStringLiteral("green"), 65280},
        {QStringLiteral("blue"), 16711680},  {QStringLiteral("yellow"), 65535},
        {QStringLiteral("white"), 16777215}, {QStringLiteral("magaenta"), 16711935}};
    return colours;
}

const QString kSlotsWarning = QStringLiteral(
    "You have exceeded the maximum number of marker & text overlays. WARNING: The next marker or "
    "text will write over the first one.");

} // namespace

MarkupsController::MarkupsController(ui::WindowContext& context, MarkerStore& markers,
                                     const MarkupControls& controls, QObject* parent)
    : QObject(parent)
    , context_(context)
    , markers_(markers)
    , controls_(controls) {
    for (const auto& [key, shape] : toolShapes()) {
        QAction* button = controls_.toolbar2.at(key);
        if (QActionGroup* group = button->actionGroup()) {
            // A finished note or angle brings its button up, leaving none pressed.
            group->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
        }
        connect(button, &QAction::triggered, this,
                [this, key = key] { Toolbar2_ButtonClick(key); });
    }
    QAction* erase = controls_.toolbar2.at(QStringLiteral("Erase"));
    connect(erase, &QAction::triggered, this,
            [this] { Toolbar2_ButtonClick(QStringLiteral("Erase")); });
    // Whether there is a last mark is asked when the list opens: loading and selecting change it.
    connect(erase->menu(), &QMenu::aboutToShow, this, &MarkupsController::updateEraseLast);
    for (QAction* entry : erase->menu()->actions()) {
        eraseLast_ = entry;
        connect(entry, &QAction::triggered, this,
                [this, entry] { Toolbar2_ButtonMenuClick(entry->data().toString()); });
    }
    for (QAction* entry : controls_.toolbar2.at(QStringLiteral("Color"))->menu()->actions()) {
        connect(entry, &QAction::triggered, this,
                [this, entry] { Toolbar2_ButtonMenuClick(entry->data().toString()); });
    }
    // Heard while Toolbar2 shows, that is while a video or image is open.
    QWidget* toolbar = erase->menu()->parentWidget();
    auto* undo = new QShortcut(QKeySequence::Undo, toolbar != nullptr ? toolbar : controls_.window);
    undo->setObjectName(QStringLiteral("EraseLastShortcut"));
    undo->setContext(Qt::WindowShortcut);
    connect(undo, &QShortcut::activated, this, &MarkupsController::eraseLast);

    for (int i = 0; i < kCameraCount; ++i) {
        media::VideoView* view = context_.media.play(i).view();
        connect(
            view, &media::VideoView::mousePressed, this,
            [this, i](int button, int, double x, double y) { PlayerMouseDown(i, button, x, y); });
        connect(
            view, &media::VideoView::mouseMoved, this,
            [this, i](int button, int, double x, double y) { PlayerMouseMove(i, button, x, y); });
        connect(view, &media::VideoView::mouseReleased, this,
                [this, i](int button, int, double x, double y) { PlayerMouseUp(i, button, x, y); });
        connect(view, &media::VideoView::wheelTurned, this,
                [this, i](int steps, double x, double y) { PlayerWheel(i, steps, x, y); });
    }
    for (int i = 0; i < 4; ++i) {
        connect(controls_.mnuGrid.at(static_cast<size_t>(i)), &QAction::triggered, this,
                [this, i] { mnuGrid_Click(i); });
    }
    connect(controls_.mnuZoomPan, &QAction::triggered, this, &MarkupsController::mnuZoomPan_Click);
    save_ = new SaveWithMarkups(context_, markers_, controls_.region, controls_.window, this);
    connect(controls_.mnuSaveVideo, &QAction::triggered, save_,
            &SaveWithMarkups::mnuSaveVideo_Click);
}

void MarkupsController::Toolbar2_ButtonClick(const QString& key) {
    if (key == QLatin1String("Erase")) {
        markers_.ClearMarkers();
        eraseLast_->setEnabled(false);
        return;
    }
    const auto tool = toolShapes().find(key);
    if (tool == toolShapes().end()) {
        return; // "Color": only its drop-down does something
    }
    QAction* button = controls_.toolbar2.at(key);
    button->setChecked(true);
    DrawingTools& tools = markers_.tools();
    const int gesture = tools.gesturePlayer();
    tools.chooseTool(tool->second, gesture >= 0 ? &markers_.markups(gesture) : nullptr);
    if (gesture >= 0) {
        markers_.DrawMarker(gesture);
    }
    if (tool->second != ShapeText) {
        return;
    }
    auto* dialog = new TextInputDialog(controls_.window, controls_.showHelp);
    connect(dialog, &QDialog::finished, this, [this, dialog, button](int result) {
        const QString note = dialog->note();
        if (result == QDialog::Accepted && !note.isEmpty()) {
            markers_.tools().noteReady(note, dialog->colour());
        } else {
            button->setChecked(false);
        }
    });
    dialog->open();
}

void MarkupsController::Toolbar2_ButtonMenuClick(const QString& key) {
    if (key == QLatin1String("Erase Last")) {
        eraseLast();
        return;
    }
    if (const auto colour = colourKeys().find(key); colour != colourKeys().end()) {
        context_.settings.MarkerColor = colour->second;
    }
}

void MarkupsController::eraseLast() {
    const int player = context_.state.SelectedPlayer;
    if (markers_.markups(player).eraseLast()) {
        markers_.DrawMarker(player);
    }
    updateEraseLast();
}

void MarkupsController::updateEraseLast() {
    eraseLast_->setEnabled(!markers_.markups(context_.state.SelectedPlayer).marks().empty());
}

QSize MarkupsController::pictureOf(int player) const {
    const QSize picture = context_.media.play(player).PlayerGetSize();
    return picture.isEmpty() ? markers_.markups(player).size() : picture;
}

QPointF MarkupsController::picturePoint(int player, double x, double y) const {
    const media::VideoView* view = context_.media.play(player).view();
    const QSize picture = pictureOf(player);
    return pictureFromControl({x, y}, view->size(), view->shownRegion(picture));
}

void MarkupsController::changed(int player, bool slotsExhausted, const QString& releaseButton) {
    markers_.DrawMarker(player);
    updateEraseLast();
    if (!releaseButton.isEmpty()) {
        controls_.toolbar2.at(releaseButton)->setChecked(false);
    }
    if (slotsExhausted) {
        context_.prompts.message(kSlotsWarning, ui::MessageIcon::Exclamation);
    }
}

void MarkupsController::PlayerMouseDown(int player, int button, double x, double y) {
    AppState& state = context_.state;
    state.SelectedPlayer = player;
    if (button == kRight && state.PlayerEnable[static_cast<size_t>(player)]) {
        return; // the pop-up menu is open
    }
    if (button == kMiddle) {
        panning_ = player;
        panFrom_ = {x, y};
        return;
    }
    DrawingTools& tools = markers_.tools();
    const int gesture = tools.gesturePlayer();
    if (gesture >= 0 && gesture != player) {
        tools.abandon(markers_.markups(gesture));
        markers_.DrawMarker(gesture);
    }
    const MarkerPen pen{context_.settings.MarkerColor, context_.settings.MarkerWidth};
    const GestureResult result =
        tools.press(markers_.markups(player), player, picturePoint(player, x, y), pen);
    changed(player, result.slotsExhausted, result.releaseButton);
}

void MarkupsController::PlayerMouseMove(int player, int button, double x, double y) {
    if (player != context_.state.SelectedPlayer) {
        return;
    }
    if (panning_ == player) {
        const media::VideoView* view = context_.media.play(player).view();
        const QRect shown = view->shownRegion(pictureOf(player));
        const QPointF delta((x - panFrom_.x()) * shown.width() / std::max(1, view->width()),
                            (y - panFrom_.y()) * shown.height() / std::max(1, view->height()));
        panFrom_ = {x, y};
        markers_.zoom(player) = dragPan(markers_.zoom(player), delta, pictureOf(player));
        applyZoom(player);
        return;
    }
    const int held = button == 0 ? 0 : (button & kLeft);
    const GestureResult result =
        markers_.tools().move(markers_.markups(player), player, held, picturePoint(player, x, y));
    changed(player, result.slotsExhausted, result.releaseButton);
}

void MarkupsController::PlayerMouseUp(int player, int button, double x, double y) {
    if (panning_ >= 0) {
        if (button == kMiddle) {
            panning_ = -1;
        }
        return;
    }
    const GestureResult result =
        markers_.tools().release(markers_.markups(player), picturePoint(player, x, y));
    changed(player, result.slotsExhausted, result.releaseButton);
}

void MarkupsController::PlayerWheel(int player, int steps, double x, double y) {
    const media::PlayerInstance& instance = context_.media.play(player);
    if (!instance.IsOpen() || instance.IsPlaying()) {
        return;
    }
    markers_.zoom(player) =
        wheelZoom(markers_.zoom(player), steps, picturePoint(player, x, y), pictureOf(player));
    applyZoom(player);
}

void MarkupsController::applyZoom(int player) {
    const ZoomPan& zoom = markers_.zoom(player);
    media::PlayerInstance& instance = context_.media.play(player);
    if (zoom.level == 0 && zoom.PanX == 0.0F && zoom.PanY == 0.0F) {
        instance.SetZoomRegion(0, 0, 0, 0);
    } else {
        const QRect shown = zoomRect(zoom, pictureOf(player));
        instance.SetZoomRegion(shown.x(), shown.y(), shown.width(), shown.height());
    }
    context_.state.PanX = zoom.PanX;
    context_.state.PanY = zoom.PanY;
    if (zoomPan_ && player == context_.state.SelectedPlayer) {
        zoomPan_->showLevel(zoom.level);
    }
}

void MarkupsController::mnuGrid_Click(int index) {
    const AppState& state = context_.state;
    const int player = state.SelectedPlayer;
    if (state.PlayerView == "QuadPlayer" && !state.PlayerEnable[static_cast<size_t>(player)]) {
        return;
    }
    PlayerMarkups& markups = markers_.markups(player);
    static constexpr const char* kWords[] = {"Course", "Medium", "Fine"};
    if (index == 3) {
        markups.removeGrids();
    } else {
        markups.addGrid(gridSpacing(kWords[index], pictureOf(player).width()));
    }
    markers_.DrawMarker(player);
}

void MarkupsController::mnuZoomPan_Click() {
    if (!zoomPan_) {
        zoomPan_ = new ZoomPanDialog(controls_.window);
        connect(zoomPan_, &ZoomPanDialog::levelChosen, this, &MarkupsController::zoomLevel);
        connect(zoomPan_, &ZoomPanDialog::panPressed, this, &MarkupsController::pan);
        connect(zoomPan_, &ZoomPanDialog::resetPressed, this, [this] { resetZoom(false); });
        connect(zoomPan_, &ZoomPanDialog::okPressed, this, [this] { resetZoom(true); });
    }
    zoomPan_->showLevel(markers_.zoom(context_.state.SelectedPlayer).level);
    zoomPan_->show();
    zoomPan_->raise();
}

void MarkupsController::zoomLevel(int level) {
    const int player = context_.state.SelectedPlayer;
    // The offset stays as it was, also where the lower level no longer allows it.
    markers_.zoom(player).level = level;
    applyZoom(player);
}

void MarkupsController::pan(int index) {
    const int player = context_.state.SelectedPlayer;
    ZoomPan& zoom = markers_.zoom(player);
    zoom.level = zoomPan_ ? zoomPan_->level() : zoom.level;
    switch (panStep(zoom, static_cast<PanButton>(index), pictureOf(player))) {
    case PanOutcome::NeedsZoom:
        context_.prompts.message(
            QStringLiteral("To enable Pan controls,\nfirst adjust the Zoom control."),
            ui::MessageIcon::Information);
        break;
    case PanOutcome::Moved:
        applyZoom(player);
        break;
    case PanOutcome::Refused:
        break;
    }
}

void MarkupsController::resetZoom(bool close) {
    const int player = context_.state.SelectedPlayer;
    markers_.zoom(player) = ZoomPan{};
    applyZoom(player);
    if (close && zoomPan_) {
        zoomPan_->close();
    }
}

} // namespace ravelcue::markups
