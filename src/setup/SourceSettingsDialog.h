#pragma once

#include "platform/media/DeviceControl.h"

#include <functional>
#include <vector>

#include <QDialog>

class QFormLayout;

namespace ravelcue::setup {

// "Source Settings" of one camera: its own controls (brightness, contrast, exposure, focus, white
// balance, ...), each change applied to the device at once. Automatic switches grey out what they
// decide. "Defaults" puts every control back; Close keeps what was set. UI thread only.
class SourceSettingsDialog final : public QDialog {
    Q_OBJECT
public:
    struct Device {
        std::function<std::vector<media::DeviceControl>()> controls;
        std::function<bool(unsigned id, int value)> set;
    };

    SourceSettingsDialog(Device device, const QString& cameraName, QWidget* owner);

private:
    void build();
    void change(unsigned id, int value);
    void setDefaults();

    Device device_;
    std::vector<media::DeviceControl> controls_;
    QFormLayout* form_ = nullptr;
    bool building_ = false;
};

} // namespace ravelcue::setup
