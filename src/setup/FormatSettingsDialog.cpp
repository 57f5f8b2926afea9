#include "FormatSettingsDialog.h"

#include "platform/ui/Controls.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace ravelcue::setup {

FormatSettingsDialog::FormatSettingsDialog(std::vector<media::VideoMode> modes,
                                           const media::VideoMode& inUse, const QString& cameraName,
                                           QWidget* owner)
    : QDialog(owner)
    , modes_(std::move(modes)) {
    setObjectName(QStringLiteral("frmFormatSettings"));
    setWindowTitle(QStringLiteral("Format Settings - ") + cameraName);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Video format"), this));
    lstModes_ = new QListWidget(this);
    lstModes_->setObjectName(QStringLiteral("lstModes"));
    lstModes_->setToolTip(QStringLiteral("Picture size, frame rate and pixel format"));
    int current = -1;
    for (size_t i = 0; i < modes_.size(); ++i) {
        lstModes_->addItem(modeText(modes_[i]));
        // Rates read back from a device are rounded to two places.
        if (modes_[i].size == inUse.size &&
            std::abs(modes_[i].frameRate - inUse.frameRate) < 0.01 && current < 0) {
            current = static_cast<int>(i);
        }
    }
    lstModes_->setCurrentRow(current);
    layout->addWidget(lstModes_);

    const ui::DialogButtonRow buttons = ui::makeOkCancelRow(this);
    QPushButton* ok = buttons.ok;
    QPushButton* cancel = buttons.cancel;
    layout->addLayout(buttons.row);
    ok->setEnabled(current >= 0);
    connect(lstModes_, &QListWidget::currentRowChanged, ok,
            [ok](int row) { ok->setEnabled(row >= 0); });
    connect(lstModes_, &QListWidget::itemDoubleClicked, ok, &QPushButton::click);
    connect(ok, &QPushButton::clicked, this, [this] {
        const int row = lstModes_->currentRow();
        if (row >= 0 && static_cast<size_t>(row) < modes_.size()) {
            emit modeChosen(modes_[static_cast<size_t>(row)]);
        }
        accept();
    });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    resize(320, 360);
}

QString FormatSettingsDialog::modeText(const media::VideoMode& mode) {
    return QStringLiteral("%1x%2, %3 fps (%4)")
        .arg(mode.size.width())
        .arg(mode.size.height())
        .arg(mode.frameRate, 0, 'f', 2)
        .arg(mode.pixelFormat);
}

} // namespace ravelcue::setup
