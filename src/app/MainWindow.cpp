#include "MainWindow.h"

#include "CommandStrip.h"
#include "breakspeed/BreakSpeedPane.h"
#include "capture/CaptureToolFrame.h"
#include "capture/FileSetCapture.h"
#include "capture/LiveView.h"
#include "core/Rounding.h"
#include "core/Version.h"
#include "markups/CameraMarkers.h"
#include "markups/MarkerStore.h"
#include "platform/media/MediaEngine.h"
#include "platform/media/VideoView.h"
#include "platform/sound/SoundOutput.h"
#include "platform/ui/CancelKey.h"
#include "platform/ui/HelpWindow.h"
#include "platform/ui/StatusPanels.h"
#include "platform/ui/StatusPopup.h"
#include "playback/PlayerPanes.h"
#include "playback/RunEditToolFrame.h"
#include "training/StrokeTraining.h"
#include "training/TrainingToolFrame.h"
#include "utilities/UtilityCommands.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QSlider>
#include <QTimer>

namespace ravelcue::app {

namespace {

QString qtext(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

MainWindow::MainWindow(const MainWindowServices& services, QWidget* parent)
    : QMainWindow(parent)
    , services_(services)
    , mode_(state_, settings_, *this)
    , media_(media::MediaInstances::create(services.engine))
    , status_(new ui::StatusPanels(this))
    , cancelKey_(new ui::CancelKey(this))
    , context_{state_,         settings_,      services.store, mode_,
               geometry_,      media_,         *status_,       services.prompts,
               services.popup, services.clock, services.tones, *cancelKey_}
    , menus_(MainMenus::build(*this))
    , sound_(std::make_unique<sound::SoundOutput>(services.tones)) {
    setObjectName(QStringLiteral("frmMain"));
    setStatusBar(status_);
    client_ = new QWidget(this);
    client_->setObjectName(QStringLiteral("frmMainClient"));
    setCentralWidget(client_);
    buildPanes();
    wireCommands();
    wireUtilities();
    wireSetup();
}

MainWindow::~MainWindow() = default;

void MainWindow::buildPanes() {
    commandStrip_ = new CommandStrip(client_);
    liveView_ = new capture::LiveView(context_, client_);
    playerPanes_ = new playback::PlayerPanes(context_, client_);
    breakSpeedPane_ = new breakspeed::BreakSpeedPane(context_, *sound_, client_);
    captureFrame_ = new capture::CaptureToolFrame(context_, client_);
    fileSetCapture_ = new capture::FileSetCapture(
        context_, *captureFrame_, *liveView_,
        [this](int frequency, int milliseconds) { sound_->PlayBeep(frequency, milliseconds); });
    trainingFrame_ = new training::TrainingToolFrame(context_, client_);
    cameraMarkers_ = std::make_unique<markups::CameraMarkers>(settings_, media_);
    training_ = new training::StrokeTraining(context_, *trainingFrame_, *cameraMarkers_, *sound_,
                                             services_.paths.programFolder);
    runEdit_ = new playback::RunEditToolFrame(context_, client_);
    buildPlayback();
}

void MainWindow::wireCommands() {
    connect(commandStrip_, &CommandStrip::cameraOptionChosen, liveView_,
            &capture::LiveView::optCamSelect_Click);
    connect(liveView_, &capture::LiveView::cameraOptionRequested, this,
            &MainWindow::selectCameraOption);
    connect(liveView_, &capture::LiveView::popupRequested, this, &MainWindow::showPopupMenu);
    for (int i = 0; i < 5; ++i) {
        connect(menus_.mnuCamera[static_cast<size_t>(i)], &QAction::triggered, this,
                [this, i] { selectCameraOption(i); });
    }
    connect(commandStrip_->cmdShowLive(), &QPushButton::clicked, this,
            &MainWindow::cmdShowLive_Click);
    connect(commandStrip_->cmdTraining(), &QPushButton::clicked, this,
            &MainWindow::cmdTraining_Click);
    connect(commandStrip_->cmdBreakSpeed(), &QPushButton::clicked, this,
            &MainWindow::cmdBreakSpeed_Click);
    connect(commandStrip_->cmdDeleteFiles(), &QPushButton::clicked, this,
            &MainWindow::cmdDeleteFiles_Click);
    connect(menus_.mnuExit, &QAction::triggered, this, &MainWindow::ShutDown);
}

QObject* MainWindow::control(const QString& name) {
    if (const auto found = controls_.constFind(name); found != controls_.constEnd()) {
        return found.value();
    }
    // Menu entries and toolbar buttons are actions; a submenu's entry is its own action.
    QObject* object = findChild<QAction*>(name);
    if (object == nullptr) {
        object = findChild<QWidget*>(name);
    }
    if (object != nullptr) {
        controls_.insert(name, object);
    }
    return object;
}

QObject* MainWindow::modeControl(std::string_view name) {
    QObject* object = control(qtext(name));
    // A name the window does not know would switch nothing, and a mode would quietly lose a
    // control; debug builds stop at the misspelt name.
    Q_ASSERT_X(object != nullptr, "ModeHost",
               qPrintable(QStringLiteral("no control ") + qtext(name)));
    return object;
}

void MainWindow::setControlEnabled(std::string_view name, bool enabled) {
    QObject* object = modeControl(name);
    if (auto* action = qobject_cast<QAction*>(object)) {
        action->setEnabled(enabled);
    } else if (auto* widget = qobject_cast<QWidget*>(object)) {
        widget->setEnabled(enabled);
    }
}

void MainWindow::setControlVisible(std::string_view name, bool visible) {
    if (!visible && name == "fmTrainingTB") {
        // Every way out of the training pane goes through here; a run must not outlive it.
        training_->paneLeft();
    }
    QObject* object = modeControl(name);
    if (auto* action = qobject_cast<QAction*>(object)) {
        action->setVisible(visible);
    } else if (auto* widget = qobject_cast<QWidget*>(object)) {
        widget->setVisible(visible);
    }
}

void MainWindow::selectCameraOption(int index) {
    if (index >= 0 && index <= 4) {
        commandStrip_->optCamSelect(index)->setChecked(true);
    }
}

void MainWindow::resetSpeedList() {
    runEdit_->resetSpeedList();
}

void MainWindow::setTitle() {
    QMainWindow::setWindowTitle(QStringLiteral("Ravelcue - ") + QLatin1String(kVersionText));
}

void MainWindow::connectCam(int camera, int deviceIndex, std::string_view renderMode) {
    ConnectCam(camera, deviceIndex, renderMode);
}

void MainWindow::closePlayer(int player) {
    if (player >= 0 && player <= 3) {
        media_.play(player).PlayerClose();
    }
}

WindowMetrics MainWindow::metrics() const {
    WindowMetrics m;
    if (const QScreen* display = screen()) {
        m.scale.dotsPerInchX = display->logicalDotsPerInchX();
        m.scale.dotsPerInchY = display->logicalDotsPerInchY();
    }
    m.widthTwips = m.scale.toTwipsX(width());
    m.heightTwips = m.scale.toTwipsY(height());
    m.baseWidthTwips = state_.BaseWidth;
    m.baseHeightTwips = state_.BaseHeight;
    return m;
}

void MainWindow::formResize() {
    if (!ravelcue::FormResize(geometry_, state_, metrics())) {
        return;
    }
    std::vector<QWidget*> shown;
    for (const std::string& name : panesOfMode(state_)) {
        if (auto* pane = qobject_cast<QWidget*>(control(QString::fromStdString(name)))) {
            pane->hide();
            shown.push_back(pane);
        }
    }
    applyGeometry();
    for (QWidget* pane : shown) {
        pane->show();
    }
}

void MainWindow::applyGeometry() {
    commandStrip_->fitHeight(client_->height());
    liveView_->applyGeometry();
    playerPanes_->applyGeometry();
    breakSpeedPane_->applyGeometry();
    captureFrame_->frame()->move(geometry_.fmCapturetb.left, geometry_.fmCapturetb.top);
    trainingFrame_->frame()->move(geometry_.fmTrainingTB.left, geometry_.fmTrainingTB.top);
    runEdit_->applyGeometry();
    // The slider lies over the foot of the player pane.
    runEdit_->slider1()->raise();
}

void MainWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    if (!state_.CurrentState.empty()) {
        formResize();
    }
}

void MainWindow::showPopupMenu(const QPoint& globalPosition) {
    menus_.mnuPopup->popup(globalPosition);
}

void MainWindow::ConnectCam(int camera, int deviceIndex, std::string_view captureMode) {
    liveView_->ConnectCam(camera, deviceIndex, captureMode);
}

void MainWindow::DisConnectCam(int camera) {
    liveView_->DisConnectCam(camera);
}

void MainWindow::cmdShowLive_Click() {
    State("Live");
    closePlayer(state_.SelectedPlayer);
    runEdit_->tmrSlider()->stop();
    cameraMarkers_->clearCamOverlay(state_.SelectedCam);
    status_->setActivity(QStringLiteral("Live Video"));
}

void MainWindow::cmdTraining_Click() {
    State("Training");
    closePlayer(state_.SelectedPlayer);
    runEdit_->tmrSlider()->stop();
    trainingFrame_->lblAlarm()->clear();
    status_->setActivity(QStringLiteral("Stroke Training"));
}

void MainWindow::cmdBreakSpeed_Click() {
    State("BreakSpeed");
    status_->setActivity(QStringLiteral("Break Speed"));
}

void MainWindow::cmdDeleteFiles_Click() {
    State("DeleteFiles");
    // The dialog returns to "Live" when it closes.
    utilities_->openDeleteFiles();
}

void MainWindow::ShutDown() {
    if (stopped_) {
        return;
    }
    stopped_ = true;
    DisConnectCam(4);
    StopPlayers();
    StopAudio();
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (auto it = windows.crbegin(); it != windows.crend(); ++it) {
        if (*it != this && (*it)->isVisible()) {
            (*it)->close();
        }
    }
    if (isVisible()) {
        close();
    }
    emit stopped();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    ShutDown();
    event->accept();
}

} // namespace ravelcue::app
