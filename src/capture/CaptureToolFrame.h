#pragma once

#include <array>

#include <QObject>

class QCheckBox;
class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;
class QTimer;
class QWidget;

namespace ravelcue::ui {
struct WindowContext;
}

namespace ravelcue::capture {

// fmCapturetb, the tool frame of the live view: which cameras to record, the file name, and the
// start/stop button. UI thread only.
class CaptureToolFrame : public QObject {
    Q_OBJECT
public:
    CaptureToolFrame(ui::WindowContext& context, QWidget* client);

    QFrame* frame() const { return frame_; }
    QCheckBox* chkCapture(int camera) const { return chkCapture_.at(static_cast<size_t>(camera)); }
    QLabel* lblCamName(int camera) const { return lblCamName_.at(static_cast<size_t>(camera)); }
    QPushButton* cmdStartCapture() const { return cmdStartCapture_; }
    QLineEdit* txtFileName() const { return txtFileName_; }
    QTimer* tmrBlink() const { return tmrBlink_; }

private:
    ui::WindowContext& context_;
    QFrame* frame_ = nullptr;
    std::array<QCheckBox*, 4> chkCapture_{};
    std::array<QLabel*, 4> lblCamName_{};
    QPushButton* cmdStartCapture_ = nullptr;
    QLineEdit* txtFileName_ = nullptr;
    QTimer* tmrBlink_ = nullptr;
};

} // namespace ravelcue::capture
