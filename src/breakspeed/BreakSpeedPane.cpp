#include "BreakSpeedPane.h"

#include "core/PaneLayout.h"
#include "platform/ui/Controls.h"
#include "platform/ui/WindowContext.h"

#include <QComboBox>
#include <QFont>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

namespace ravelcue::breakspeed {

namespace {

// The light grey both waveform views are painted on.
constexpr const char* kWaveBackground = "#e0e0e0";

QFrame* makeWaveBox(QWidget* parent, const QString& name, const QString& toolTip) {
    QFrame* box = ui::makeFrame(parent, name, QRect(0, 0, 800, 286));
    box->setToolTip(toolTip);
    box->setFrameStyle(QFrame::Box | QFrame::Plain);
    box->setStyleSheet(QStringLiteral("QFrame#%1 { background: %2; }").arg(name, kWaveBackground));
    return box;
}

QLineEdit* fieldUnder(QFrame* frame, const QString& name, const QString& labelName,
                      const QString& caption, const QString& toolTip, int left, int width) {
    ui::makeLabel(frame, labelName, caption, QRect(left, 4, width + 20, 18));
    return ui::makeTextBox(frame, name, toolTip, QRect(left, 24, width, 26));
}

} // namespace

BreakSpeedPane::BreakSpeedPane(ui::WindowContext& context, QWidget* client)
    : QObject(client)
    , context_(context) {
    picBreakSpeed_ =
        ui::makeFrame(client, QStringLiteral("picBreakSpeed"), QRect(kPaneColumn, 0, 800, 600));
    picBreakSpeed_->hide();
    picture1_ =
        makeWaveBox(picBreakSpeed_, QStringLiteral("Picture1"), QStringLiteral("Captured Audio"));
    picture2_ = makeWaveBox(picBreakSpeed_, QStringLiteral("Picture2"),
                            QStringLiteral("Audio selected for analysis"));
    lblBreakStatus_ = ui::makeLabel(picBreakSpeed_, QStringLiteral("lblBreakStatus"),
                                    QStringLiteral("Breakspeed status"), QRect(4, 296, 792, 22));
    QFont statusFont(QStringLiteral("Arial"));
    statusFont.setBold(true);
    statusFont.setPointSize(10);
    lblBreakStatus_->setFont(statusFont);

    fmBreakSpeedTB_ =
        ui::makeFrame(client, QStringLiteral("fmBreakSpeedTB"), QRect(kPaneColumn, 600, 800, 88));
    fmBreakSpeedTB_->setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
    fmBreakSpeedTB_->hide();
    ui::makeButton(fmBreakSpeedTB_, QStringLiteral("cmdStartBreakSpeed"),
                   QStringLiteral("Start Capture"),
                   QStringLiteral("Start/Stop Break Speed Measurement"), QRect(6, 14, 100, 44));
    cmdCalTone_ =
        ui::makeButton(fmBreakSpeedTB_, QStringLiteral("cmdCalTone"), QStringLiteral("400hz Tone"),
                       QStringLiteral("Play calibration tone"), QRect(112, 14, 84, 44));
    ui::makeLabel(fmBreakSpeedTB_, QStringLiteral("Label2"), QStringLiteral("Threshold"),
                  QRect(204, 4, 110, 18));
    cboThreshold_ =
        ui::makeDropDownList(fmBreakSpeedTB_, QStringLiteral("cboThreshold"),
                             QStringLiteral("Amplitude threshold"), QRect(204, 24, 112, 26));
    txtDistance_ = fieldUnder(fmBreakSpeedTB_, QStringLiteral("txtDistance"),
                              QStringLiteral("lblDistance"), QStringLiteral("Distance(in)"),
                              QStringLiteral("Enter distance traveled"), 324, 80);
    txtDistance_->setText(QStringLiteral("48"));
    lblDistance_ = fmBreakSpeedTB_->findChild<QLabel*>(QStringLiteral("lblDistance"));
    QLineEdit* delta = fieldUnder(fmBreakSpeedTB_, QStringLiteral("txtDeltaTime"),
                                  QStringLiteral("Label10"), QStringLiteral("Delta time(secs)"),
                                  QStringLiteral("Time between markers"), 412, 96);
    delta->setReadOnly(true);
    QLineEdit* speed =
        fieldUnder(fmBreakSpeedTB_, QStringLiteral("txtSpeed"), QStringLiteral("lblSpeed"),
                   QStringLiteral("Speed(mph)"), QStringLiteral("Break speed"), 516, 80);
    speed->setReadOnly(true);
    lblSpeed_ = fmBreakSpeedTB_->findChild<QLabel*>(QStringLiteral("lblSpeed"));
    QLineEdit* energy = fieldUnder(fmBreakSpeedTB_, QStringLiteral("txtEnergy"),
                                   QStringLiteral("Label3"), QStringLiteral("Energy(joules)"),
                                   QStringLiteral("Kinetic energy in joules"), 604, 86);
    energy->setReadOnly(true);
    ui::makeButton(fmBreakSpeedTB_, QStringLiteral("cmdBreakSpeedLog"), QStringLiteral("Save"),
                   QStringLiteral("Click to save  break speed"), QRect(702, 14, 86, 44));
    tmrBlink2_ = ui::makeTimer(client, QStringLiteral("tmrBlink2"), 500, context_.clock);
}

void BreakSpeedPane::applyGeometry() {
    const PaneGeometry& g = context_.geometry;
    picBreakSpeed_->setGeometry(g.picBreakSpeed.left, g.picBreakSpeed.top, g.picBreakSpeed.width,
                                g.picBreakSpeed.height);
    picture1_->setGeometry(g.Picture1.left, g.Picture1.top, g.Picture1.width, g.Picture1.height);
    picture2_->setGeometry(g.Picture2.left, g.Picture2.top, g.Picture2.width, g.Picture2.height);
    lblBreakStatus_->move(lblBreakStatus_->x(), g.lblBreakStatusTop);
    lblBreakStatus_->resize(g.picBreakSpeed.width - 8, lblBreakStatus_->height());
    fmBreakSpeedTB_->move(g.fmBreakSpeedTB.left, g.fmBreakSpeedTB.top);
}

} // namespace ravelcue::breakspeed
