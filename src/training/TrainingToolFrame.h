#pragma once

#include <QObject>

class QComboBox;
class QFrame;
class QLabel;
class QPushButton;
class QTimer;
class QWidget;

namespace ravelcue::ui {
struct WindowContext;
}

namespace ravelcue::training {

// fmTrainingTB, the tool frame of stroke training: calibration of the target colour, the
// alarm text, the start/stop button and the alarm type, with the training timers. UI thread only.
class TrainingToolFrame : public QObject {
    Q_OBJECT
public:
    TrainingToolFrame(ui::WindowContext& context, QWidget* client);

    QFrame* frame() const { return frame_; }
    QPushButton* cmdCalibrate() const { return cmdCalibrate_; }
    QLabel* lblAlarm() const { return lblAlarm_; }
    QComboBox* cboAlarmType() const { return cboAlarmType_; }
    QTimer* tmrCalibrate() const { return tmrCalibrate_; }

private:
    ui::WindowContext& context_;
    QFrame* frame_ = nullptr;
    QPushButton* cmdCalibrate_ = nullptr;
    QLabel* lblAlarm_ = nullptr;
    QComboBox* cboAlarmType_ = nullptr;
    QTimer* tmrCalibrate_ = nullptr;
};

} // namespace ravelcue::training
