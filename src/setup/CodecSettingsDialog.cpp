#include "CodecSettingsDialog.h"

#include "platform/ui/Controls.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace ravelcue::setup {

namespace {

QSpinBox* spinBox(QWidget* parent, const QString& name, int low, int high, int value,
                  const QString& toolTip) {
    auto* box = new QSpinBox(parent);
    box->setObjectName(name);
    box->setRange(low, high);
    box->setValue(value);
    box->setToolTip(toolTip);
    return box;
}

} // namespace

CodecSettingsDialog::CodecSettingsDialog(const QString& compressor, const CodecSettings& settings,
                                         QWidget* owner)
    : QDialog(owner)
    , settings_(settings) {
    setObjectName(QStringLiteral("frmCodecSettings"));
    setWindowTitle(QStringLiteral("Codec Settings - ") + compressor);
    auto* layout = new QVBoxLayout(this);
    auto* fields = new QFormLayout;
    const bool h264 = compressor == QLatin1String("H.264");
    if (compressor == QLatin1String("MJPEG")) {
        spnQuality_ = spinBox(this, QStringLiteral("spnQuality"), kMinMjpegQuality,
                              kMaxMjpegQuality, settings.MjpegQuality,
                              QStringLiteral("Higher gives better pictures and bigger files"));
        fields->addRow(QStringLiteral("Quality"), spnQuality_);
    } else {
        spnBitRate_ = spinBox(this, QStringLiteral("spnBitRate"), 0, kMaxBitRateKbps,
                              h264 ? settings.H264BitRate : settings.Mpeg4BitRate,
                              QStringLiteral("Bits a second; Automatic keeps a fixed quality"));
        spnBitRate_->setSuffix(QStringLiteral(" kbit/s"));
        spnBitRate_->setSpecialValueText(QStringLiteral("Automatic"));
        fields->addRow(QStringLiteral("Bit rate"), spnBitRate_);
        spnKeyFrameInterval_ =
            spinBox(this, QStringLiteral("spnKeyFrameInterval"), 0, kMaxKeyFrameInterval,
                    h264 ? settings.H264KeyFrameInterval : settings.Mpeg4KeyFrameInterval,
                    QStringLiteral("Frames from one key frame to the next"));
        spnKeyFrameInterval_->setSuffix(QStringLiteral(" frames"));
        spnKeyFrameInterval_->setSpecialValueText(QStringLiteral("Every second"));
        fields->addRow(QStringLiteral("Key-frame interval"), spnKeyFrameInterval_);
    }
    layout->addLayout(fields);

    const ui::DialogButtonRow buttons = ui::makeOkCancelRow(this);
    QPushButton* ok = buttons.ok;
    QPushButton* cancel = buttons.cancel;
    layout->addLayout(buttons.row);
    connect(ok, &QPushButton::clicked, this, [this, h264] {
        if (spnQuality_ != nullptr) {
            settings_.MjpegQuality = spnQuality_->value();
        } else if (h264) {
            settings_.H264BitRate = spnBitRate_->value();
            settings_.H264KeyFrameInterval = spnKeyFrameInterval_->value();
        } else {
            settings_.Mpeg4BitRate = spnBitRate_->value();
            settings_.Mpeg4KeyFrameInterval = spnKeyFrameInterval_->value();
        }
        emit settingsChosen(settings_);
        accept();
    });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

} // namespace ravelcue::setup
