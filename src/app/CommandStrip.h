#pragma once

#include <array>

#include <QObject>

class QButtonGroup;
class QFrame;
class QLabel;
class QPushButton;
class QRadioButton;
class QWidget;

namespace ravelcue::ui {
class Clock;
}

namespace ravelcue::app {

// fmControl, the strip of commands down the left edge: back to live, the camera options, the
// mode buttons and the message box. UI thread only.
class CommandStrip : public QObject {
    Q_OBJECT
public:
    explicit CommandStrip(QWidget* client);

    QFrame* frame() const { return frame_; }
    QPushButton* cmdShowLive() const { return cmdShowLive_; }
    QPushButton* cmdLoadVideo() const { return cmdLoadVideo_; }
    QPushButton* cmdLoadImage() const { return cmdLoadImage_; }
    QPushButton* cmdDeleteFiles() const { return cmdDeleteFiles_; }
    QPushButton* cmdBreakSpeed() const { return cmdBreakSpeed_; }
    QPushButton* cmdTraining() const { return cmdTraining_; }
    // 0..3 one camera, 4 all four.
    QRadioButton* optCamSelect(int index) const {
        return optCamSelect_.at(static_cast<size_t>(index));
    }
    QLabel* lblCam(int index) const { return lblCam_.at(static_cast<size_t>(index)); }
    QLabel* lblMessageBox() const { return lblMessageBox_; }

    // Stretches the strip to the client's height.
    void fitHeight(int clientHeight);

signals:
    // An option became set, by a click or by the program; an option already set sends nothing.
    void cameraOptionChosen(int index);

private:
    QFrame* frame_ = nullptr;
    QPushButton* cmdShowLive_ = nullptr;
    QPushButton* cmdLoadVideo_ = nullptr;
    QPushButton* cmdLoadImage_ = nullptr;
    QPushButton* cmdDeleteFiles_ = nullptr;
    QPushButton* cmdBreakSpeed_ = nullptr;
    QPushButton* cmdTraining_ = nullptr;
    std::array<QRadioButton*, 5> optCamSelect_{};
    std::array<QLabel*, 5> lblCam_{};
    QLabel* lblMessageBox_ = nullptr;
    QButtonGroup* cameraOptions_ = nullptr;
};

} // namespace ravelcue::app
