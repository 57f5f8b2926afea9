#include "ZoomPanDialog.h"

#include "ZoomPan.h"
#include "platform/ui/Controls.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QStyle>
#include <QVBoxLayout>

namespace ravelcue::markups {

ZoomPanDialog::ZoomPanDialog(QWidget* owner)
    : QDialog(owner, Qt::Tool) {
    setObjectName(QStringLiteral("frmZoomPan"));
    setWindowTitle(QStringLiteral("Zoom/Pan Control"));
    setAttribute(Qt::WA_DeleteOnClose);
    setModal(false);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(ui::makeDialogLabel(this, QStringLiteral("Label1"), QStringLiteral("Zoom")));
    slider1_ = new QSlider(Qt::Horizontal, this);
    slider1_->setObjectName(QStringLiteral("Slider1"));
    slider1_->setToolTip(QStringLiteral("Zoom"));
    slider1_->setRange(0, kMaxZoom);
    slider1_->setSingleStep(1);
    slider1_->setPageStep(5);
    slider1_->setTickPosition(QSlider::TicksBelow);
    connect(slider1_, &QSlider::valueChanged, this, &ZoomPanDialog::levelChosen);
    layout->addWidget(slider1_);

    layout->addWidget(ui::makeDialogLabel(this, QStringLiteral("Label2"), QStringLiteral("Pan")));
    auto* pad = new QGridLayout;
    struct PadButton {
        const char* tip;
        QStyle::StandardPixmap icon;
        int row;
        int column;
    };
    static constexpr PadButton kPad[] = {{"Pan Up", QStyle::SP_ArrowUp, 0, 1},
                                         {"Pan Down", QStyle::SP_ArrowDown, 2, 1},
                                         {"Pan Left", QStyle::SP_ArrowLeft, 1, 0},
                                         {"Pan Right", QStyle::SP_ArrowRight, 1, 2},
                                         {"Center", QStyle::SP_DialogResetButton, 1, 1}};
    for (int i = 0; i < 5; ++i) {
        const PadButton& entry = kPad[i];
        QPushButton* button =
            ui::makeDialogButton(this, ui::indexedName(QStringLiteral("cmdPan"), i), QString(),
                                 QString::fromLatin1(entry.tip));
        button->setIcon(style()->standardIcon(entry.icon));
        button->setFixedSize(36, 30);
        connect(button, &QPushButton::clicked, this, [this, i] { emit panPressed(i); });
        pad->addWidget(button, entry.row, entry.column);
    }
    layout->addLayout(pad);

    QPushButton* reset =
        ui::makeDialogButton(this, QStringLiteral("cmdReset"), QStringLiteral("Reset"),
                             QStringLiteral("Reset Pan and Zoom"));
    QPushButton* ok = ui::makeDialogButton(this, QStringLiteral("cmdOK"), QStringLiteral("OK"));
    connect(reset, &QPushButton::clicked, this, &ZoomPanDialog::resetPressed);
    connect(ok, &QPushButton::clicked, this, &ZoomPanDialog::okPressed);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(reset);
    buttons->addWidget(ok);
    layout->addLayout(buttons);
}

int ZoomPanDialog::level() const {
    return slider1_->value();
}

void ZoomPanDialog::showLevel(int level) {
    const QSignalBlocker quiet(slider1_);
    slider1_->setValue(level);
}

} // namespace ravelcue::markups
