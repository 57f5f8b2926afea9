#pragma once

#include "core/AppSettings.h"

#include <QDialog>

class QSpinBox;

namespace ravelcue::setup {

// "Codec Settings" of one compressor: the quality of MJPEG, or the bit rate and key-frame
// interval of H.264 and MPEG-4 Visual. OK hands the settings on; Cancel changes nothing.
class CodecSettingsDialog final : public QDialog {
    Q_OBJECT
public:
    CodecSettingsDialog(const QString& compressor, const CodecSettings& settings, QWidget* owner);

signals:
    void settingsChosen(const ravelcue::CodecSettings& settings);

private:
    CodecSettings settings_;
    QSpinBox* spnQuality_ = nullptr;
    QSpinBox* spnBitRate_ = nullptr;
    QSpinBox* spnKeyFrameInterval_ = nullptr;
};

} // namespace ravelcue::setup
