#pragma once

#include "platform/media/VideoMode.h"

#include <vector>

#include <QDialog>

class QListWidget;

namespace ravelcue::setup {

// "Format Settings" of one camera: the modes its device really offers, the one in use chosen.
// OK hands the chosen mode on; Cancel changes nothing. UI thread only.
class FormatSettingsDialog final : public QDialog {
    Q_OBJECT
public:
    FormatSettingsDialog(std::vector<media::VideoMode> modes, const media::VideoMode& inUse,
                         const QString& cameraName, QWidget* owner);

    // "1280x720, 60.00 fps (MJPG)".
    static QString modeText(const media::VideoMode& mode);

signals:
    void modeChosen(const ravelcue::media::VideoMode& mode);

private:
    std::vector<media::VideoMode> modes_;
    QListWidget* lstModes_ = nullptr;
};

} // namespace ravelcue::setup
