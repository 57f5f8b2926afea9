#include "CaptureToolFrame.h"

#include "core/PaneLayout.h"
#include "platform/ui/Controls.h"
#include "platform/ui/WindowContext.h"

#include <QCheckBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

namespace ravelcue::capture {

CaptureToolFrame::CaptureToolFrame(ui::WindowContext& context, QWidget* client)
    : QObject(client)
    , context_(context) {
    frame_ = ui::makeFrame(client, QStringLiteral("fmCapturetb"), QRect(kPaneColumn, 600, 800, 88));
    frame_->setFrameStyle(QFrame::StyledPanel | QFrame::Raised);

    ui::makeLabel(frame_, QStringLiteral("lblCaptureSelect"), QStringLiteral("Capture Select:"),
                  QRect(8, 6, 110, 18));
    for (int i = 0; i < 4; ++i) {
        const auto k = static_cast<size_t>(i);
        const int left = 8 + i * 66;
        lblCamName_[k] = ui::makeLabel(frame_, ui::indexedName(QStringLiteral("lblCamName"), i),
                                       QStringLiteral("Cam%1").arg(i + 1), QRect(left, 28, 62, 18));
        lblCamName_[k]->setEnabled(false);
        chkCapture_[k] = ui::makeCheckBox(
            frame_, ui::indexedName(QStringLiteral("chkCapture"), i), QString(),
            QStringLiteral("Enable capture Cam %1").arg(i + 1), QRect(left + 2, 50, 24, 24));
        chkCapture_[k]->setEnabled(false);
    }
    ui::makeLabel(frame_, QStringLiteral("lblFileName"), QStringLiteral("Video Capture Filename"),
                  QRect(290, 6, 260, 18));
    txtFileName_ =
        ui::makeTextBox(frame_, QStringLiteral("txtFileName"),
                        QStringLiteral("Filename for captured video"), QRect(290, 30, 290, 28));
    cmdStartCapture_ = ui::makeButton(
        frame_, QStringLiteral("cmdStartCapture"), QStringLiteral("Start Video Capture"),
        QStringLiteral("Start/Stop Video Capture"), QRect(600, 18, 180, 48));
    tmrBlink_ = ui::makeTimer(client, QStringLiteral("tmrBlink"), 500, context_.clock);
}

} // namespace ravelcue::capture
