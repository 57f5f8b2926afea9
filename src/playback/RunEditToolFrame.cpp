#include "RunEditToolFrame.h"

#include "core/PaneLayout.h"
#include "platform/ui/Controls.h"
#include "platform/ui/Icons.h"
#include "platform/ui/WindowContext.h"

#include <QAction>
#include <QActionGroup>
#include <QCheckBox>
#include <QFrame>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>

namespace ravelcue::playback {

namespace {

struct ButtonEntry {
    const char* key;
    const char* toolTip;
};

QToolBar* makeToolBar(QWidget* parent, const QString& name, const QRect& geometry) {
    auto* bar = new QToolBar(parent);
    bar->setObjectName(name);
    bar->setIconSize(QSize(24, 24));
    bar->setMovable(false);
    bar->setFloatable(false);
    bar->setGeometry(geometry);
    return bar;
}

QAction* addButton(QToolBar* bar, const QString& barName, const ButtonEntry& entry) {
    const QString key = QString::fromLatin1(entry.key);
    QAction* action = bar->addAction(ui::toolbarIcon(key), key);
    action->setObjectName(barName + QLatin1Char('_') + key);
    action->setToolTip(QString::fromLatin1(entry.toolTip));
    action->setProperty("image", key);
    if (QWidget* button = bar->widgetForAction(action)) {
        button->setObjectName(barName + QLatin1Char('_') + key);
    }
    return action;
}

} // namespace

RunEditToolFrame::RunEditToolFrame(ui::WindowContext& context, QWidget* client)
    : QObject(client)
    , context_(context) {
    frame_ = ui::makeFrame(client, QStringLiteral("fmRunEditTB"), QRect(kPaneColumn, 600, 800, 88));
    frame_->setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
    frame_->hide();
    buildToolbar1();
    buildToolbar2();

    lblSpeed2_ = ui::makeLabel(frame_, QStringLiteral("lblSpeed2"), QStringLiteral("Speed"),
                               QRect(612, 8, 60, 18));
    lstSpeed_ = new QListWidget(frame_);
    lstSpeed_->setObjectName(QStringLiteral("lstSpeed"));
    lstSpeed_->setToolTip(QStringLiteral("Video Playback Speed"));
    lstSpeed_->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    lstSpeed_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    lstSpeed_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    lstSpeed_->setGeometry(612, 28, 70, 24);
    chkLoop_ = ui::makeCheckBox(frame_, QStringLiteral("chkLoop"), QStringLiteral("Loop"),
                                QStringLiteral("Loop video playback"), QRect(700, 28, 80, 24));

    slider1_ = new Timeline(client);
    slider1_->setObjectName(QStringLiteral("Slider1"));
    slider1_->setToolTip(QStringLiteral(
        "Hold down Shift key and drag to select region. Right click to clear region."));
    slider1_->setRange(0, 100);
    slider1_->setSingleStep(1);
    slider1_->setPageStep(5);
    slider1_->setTickPosition(QSlider::TicksBelow);
    slider1_->setGeometry(kPaneColumn, 565, 800, 35);
    slider1_->hide();

    tmrSlider_ = ui::makeTimer(client, QStringLiteral("tmrSlider"), 100, context_.clock);
}

void RunEditToolFrame::buildToolbar1() {
    toolbar1_ = makeToolBar(frame_, QStringLiteral("Toolbar1"), QRect(6, 4, 200, 40));
    static constexpr ButtonEntry kButtons[] = {{"Rewind", "Rewind Video"},
                                               {"StepBack", "Step Back"},
                                               {"Play", "Play Video"},
                                               {"StepForward", "Step Forward"},
                                               {"Stop", "Stop Video"}};
    for (const ButtonEntry& entry : kButtons) {
        buttons1_[QString::fromLatin1(entry.key)] =
            addButton(toolbar1_, QStringLiteral("Toolbar1"), entry);
    }
}

void RunEditToolFrame::buildToolbar2() {
    toolbar2_ = makeToolBar(frame_, QStringLiteral("Toolbar2"), QRect(6, 44, 400, 40));
    static constexpr ButtonEntry kTools[] = {{"Line", "Draw Line"},
                                             {"Vline", "Draw Vertical Line"},
                                             {"Hline", "Draw Horizontal Line"},
                                             {"Freehand", "Draw Freehand"},
                                             {"Angle", "Measure Angle"},
                                             {"Ellipse", "Draw Ellipse"},
                                             {"Rectangle", "Draw Rectangle"},
                                             {"Text", "PlaceText on video"}};
    auto* group = new QActionGroup(toolbar2_);
    group->setExclusive(true);
    for (const ButtonEntry& entry : kTools) {
        QAction* action = addButton(toolbar2_, QStringLiteral("Toolbar2"), entry);
        action->setCheckable(true);
        group->addAction(action);
        buttons2_[QString::fromLatin1(entry.key)] = action;
    }
    buttons2_[QStringLiteral("Line")]->setChecked(true);

    QAction* colour = addButton(toolbar2_, QStringLiteral("Toolbar2"), {"Color", "Marker Color"});
    auto* colours = new QMenu(toolbar2_);
    colours->setObjectName(QStringLiteral("Toolbar2_ColorMenu"));
    static constexpr std::pair<const char*, const char*> kColours[] = {
        {"Red", "red"},       {"Green", "green"}, {"Blue", "blue"},
        {"Yellow", "yellow"}, {"White", "white"}, {"Magenta", "magaenta"}};
    for (const auto& [text, key] : kColours) {
        QAction* entry = colours->addAction(QString::fromLatin1(text));
        entry->setObjectName(QStringLiteral("Toolbar2_Color_") + QString::fromLatin1(key));
        entry->setData(QString::fromLatin1(key));
    }
    colour->setMenu(colours);
    buttons2_[QStringLiteral("Color")] = colour;

    QAction* erase = addButton(toolbar2_, QStringLiteral("Toolbar2"), {"Erase", "Erase Markers"});
    auto* eraseMenu = new QMenu(toolbar2_);
    eraseMenu->setObjectName(QStringLiteral("Toolbar2_EraseMenu"));
    QAction* eraseLast = eraseMenu->addAction(QStringLiteral("Erase Last Marker"));
    eraseLast->setObjectName(QStringLiteral("Toolbar2_Erase_Last"));
    eraseLast->setData(QStringLiteral("Erase Last"));
    eraseLast->setEnabled(false);
    erase->setMenu(eraseMenu);
    buttons2_[QStringLiteral("Erase")] = erase;
    for (QAction* withMenu : {colour, erase}) {
        if (auto* button = qobject_cast<QToolButton*>(toolbar2_->widgetForAction(withMenu))) {
            button->setPopupMode(QToolButton::MenuButtonPopup);
        }
    }
}

void RunEditToolFrame::fillSpeedList() {
    lstSpeed_->clear();
    lstSpeed_->addItems({QStringLiteral("X4"), QStringLiteral("X2"), QStringLiteral("X1"),
                         QStringLiteral("X/2"), QStringLiteral("X/4")});
    // Each entry fills the one-line box, so that no part of the next one peeks in.
    const int rowHeight = lstSpeed_->height() - 2 * lstSpeed_->frameWidth();
    for (int i = 0; i < lstSpeed_->count(); ++i) {
        lstSpeed_->item(i)->setSizeHint(QSize(0, rowHeight));
    }
}

void RunEditToolFrame::resetSpeedList() {
    if (lstSpeed_->count() <= 2) {
        return;
    }
    const QSignalBlocker quietList(lstSpeed_);
    const QSignalBlocker quietBar(lstSpeed_->verticalScrollBar());
    lstSpeed_->setCurrentRow(2);
    lstSpeed_->scrollToItem(lstSpeed_->item(2), QAbstractItemView::PositionAtTop);
    lstSpeed_->verticalScrollBar()->setValue(2);
    lstSpeed_->clearSelection();
}

int RunEditToolFrame::topSpeedIndex() const {
    return lstSpeed_->verticalScrollBar()->value();
}

void RunEditToolFrame::scrollSpeedTo(int index) {
    lstSpeed_->verticalScrollBar()->setValue(index);
}

void RunEditToolFrame::applyGeometry() {
    const PaneGeometry& g = context_.geometry;
    frame_->move(g.fmRunEditTB.left, g.fmRunEditTB.top);
    slider1_->setGeometry(kPaneColumn, g.Slider1.top, std::max(1, g.Slider1.width),
                          slider1_->height());
}

} // namespace ravelcue::playback
