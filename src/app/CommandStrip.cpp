#include "CommandStrip.h"

#include "core/PaneLayout.h"
#include "platform/ui/Controls.h"

#include <QButtonGroup>
#include <QFont>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>

namespace ravelcue::app {

namespace {

// The strip's inner measures are pixels at 96 dots an inch of its design in twips: 1815 twips
// wide buttons, 615 high, 720 apart from the top of the first at 1560.
constexpr int kLeft = 16;
constexpr int kWidth = 121;
constexpr int kButtonHeight = 41;

QRect buttonAt(int topTwips) {
    return {kLeft, topTwips / 15, kWidth, kButtonHeight};
}

} // namespace

CommandStrip::CommandStrip(QWidget* client)
    : QObject(client) {
    frame_ = ui::makeFrame(client, QStringLiteral("fmControl"), QRect(0, 0, kPaneColumn, 700));

    QFrame* live = ui::makeFrame(frame_, QStringLiteral("fmLive"), QRect(kLeft, 8, kWidth, 89));
    live->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    cmdShowLive_ =
        ui::makeButton(live, QStringLiteral("cmdShowLive"), QStringLiteral("Live Video"),
                       QStringLiteral("Show the live cameras"), QRect(4, 4, kWidth - 8, 38));
    QFrame* select =
        ui::makeFrame(live, QStringLiteral("fmCamSelect"), QRect(2, 44, kWidth - 4, 42));
    const QStringList captions{QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"),
                               QStringLiteral("4"), QStringLiteral("All")};
    cameraOptions_ = new QButtonGroup(this);
    cameraOptions_->setExclusive(true);
    for (int i = 0; i < 5; ++i) {
        const auto k = static_cast<size_t>(i);
        const int left = 2 + i * 22;
        lblCam_[k] = ui::makeLabel(select, ui::indexedName(QStringLiteral("lblCam"), i),
                                   captions[i], QRect(left, 2, i == 4 ? 24 : 20, 16));
        lblCam_[k]->setAlignment(Qt::AlignCenter);
        auto* option = new QRadioButton(select);
        option->setObjectName(ui::indexedName(QStringLiteral("optCamSelect"), i));
        option->setToolTip(i == 4 ? QStringLiteral("Select All 4 Cams")
                                  : QStringLiteral("Select Cam %1").arg(i + 1));
        option->setGeometry(left + 2, 20, 20, 20);
        cameraOptions_->addButton(option, i);
        optCamSelect_[k] = option;
        connect(option, &QRadioButton::toggled, this, [this, i](bool checked) {
            if (checked) {
                emit cameraOptionChosen(i);
            }
        });
        if (i < 4) {
            lblCam_[k]->setEnabled(false);
            option->setEnabled(false);
        }
    }
    // Option 0 is set from the start, so that choosing camera 1 later runs no handler.
    {
        const QSignalBlocker quiet(optCamSelect_[0]);
        optCamSelect_[0]->setChecked(true);
    }

    cmdLoadVideo_ =
        ui::makeButton(frame_, QStringLiteral("cmdLoadVideo"), QStringLiteral("Load Video File"),
                       QStringLiteral("Open a video, or a whole file Set"), buttonAt(1560));
    cmdLoadImage_ =
        ui::makeButton(frame_, QStringLiteral("cmdLoadImage"), QStringLiteral("Load Image File"),
                       QStringLiteral("Open a still image, or an image Set"), buttonAt(2280));
    cmdDeleteFiles_ =
        ui::makeButton(frame_, QStringLiteral("cmdDeleteFiles"), QStringLiteral("Delete Files"),
                       QStringLiteral("Delete stored videos and images"), buttonAt(3000));
    cmdBreakSpeed_ =
        ui::makeButton(frame_, QStringLiteral("cmdBreakSpeed"), QStringLiteral("Break Speed"),
                       QStringLiteral("Break Speed Measurement"), buttonAt(3720));
    cmdTraining_ =
        ui::makeButton(frame_, QStringLiteral("cmdTraining"), QStringLiteral("Stroke Training"),
                       QStringLiteral("Start Stroke Training"), buttonAt(4440));
    lblMessageBox_ = ui::makeLabel(frame_, QStringLiteral("lblMessageBox"), QString(),
                                   QRect(kLeft, 5160 / 15, kWidth, 2295 / 15));
    QFont messageFont(QStringLiteral("Arial"));
    messageFont.setPointSize(9);
    lblMessageBox_->setFont(messageFont);
    lblMessageBox_->setWordWrap(true);
    lblMessageBox_->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
}

void CommandStrip::fitHeight(int clientHeight) {
    frame_->resize(kPaneColumn, clientHeight);
}

} // namespace ravelcue::app
