#include "SourceSettingsDialog.h"

#include "platform/ui/Controls.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QVBoxLayout>

namespace ravelcue::setup {

SourceSettingsDialog::SourceSettingsDialog(Device device, const QString& cameraName, QWidget* owner)
    : QDialog(owner)
    , device_(std::move(device)) {
    setObjectName(QStringLiteral("frmSourceSettings"));
    setWindowTitle(QStringLiteral("Source Settings - ") + cameraName);
    auto* layout = new QVBoxLayout(this);
    auto* controls = new QWidget(this);
    form_ = new QFormLayout(controls);
    layout->addWidget(controls);
    auto* buttons = new QHBoxLayout;
    auto* defaults =
        ui::makeDialogButton(this, QStringLiteral("cmdDefaults"), QStringLiteral("Defaults"),
                             QStringLiteral("Set every control back to its default"));
    auto* close = ui::makeDialogButton(this, QStringLiteral("cmdClose"), QStringLiteral("Close"));
    buttons->addWidget(defaults);
    buttons->addStretch();
    buttons->addWidget(close);
    layout->addLayout(buttons);
    connect(defaults, &QPushButton::clicked, this, &SourceSettingsDialog::setDefaults);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    build();
    setMinimumWidth(380);
}

void SourceSettingsDialog::build() {
    building_ = true;
    controls_ = device_.controls();
    while (form_->rowCount() > 0) {
        form_->removeRow(0);
    }
    for (const media::DeviceControl& c : controls_) {
        QWidget* editor = nullptr;
        const unsigned id = c.id;
        switch (c.kind) {
        case media::DeviceControl::Kind::Boolean: {
            auto* box = new QCheckBox(this);
            box->setChecked(c.value != 0);
            connect(box, &QCheckBox::toggled, this,
                    [this, id](bool on) { change(id, on ? 1 : 0); });
            editor = box;
            break;
        }
        case media::DeviceControl::Kind::Menu: {
            auto* list = new QComboBox(this);
            for (const auto& [value, name] : c.menu) {
                list->addItem(name, value);
            }
            list->setCurrentIndex(list->findData(c.value));
            connect(list, &QComboBox::activated, this,
                    [this, id, list](int entry) { change(id, list->itemData(entry).toInt()); });
            editor = list;
            break;
        }
        case media::DeviceControl::Kind::Integer: {
            auto* slider = new QSlider(Qt::Horizontal, this);
            slider->setRange(c.minimum, c.maximum);
            slider->setSingleStep(c.step);
            slider->setPageStep(std::max(c.step, (c.maximum - c.minimum) / 10));
            slider->setValue(c.value);
            slider->setToolTip(QString::number(c.value));
            connect(slider, &QSlider::valueChanged, this, [this, id, slider](int value) {
                slider->setToolTip(QString::number(value));
                change(id, value);
            });
            editor = slider;
            break;
        }
        }
        editor->setObjectName(c.name);
        editor->setEnabled(!c.inactive);
        form_->addRow(c.name, editor);
    }
    if (controls_.empty()) {
        form_->addRow(
            new QLabel(QStringLiteral("This camera offers no settings of its own."), this));
    }
    building_ = false;
}

void SourceSettingsDialog::change(unsigned id, int value) {
    if (building_) {
        return;
    }
    device_.set(id, value);
    // An automatic switch frees or takes over other controls: show what the device says now.
    const std::vector<media::DeviceControl> now = device_.controls();
    for (const media::DeviceControl& c : now) {
        if (auto* editor = findChild<QWidget*>(c.name)) {
            editor->setEnabled(!c.inactive);
        }
    }
}

void SourceSettingsDialog::setDefaults() {
    for (const media::DeviceControl& c : controls_) {
        device_.set(c.id, c.defaultValue);
    }
    build();
}

} // namespace ravelcue::setup
