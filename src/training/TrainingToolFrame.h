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

class ColourBox;

// fmTrainingTB, the tool frame of stroke training: calibration of the target colour, the
// alarm text, the start/stop button and the alarm type, with the training timers. UI thread only.
class TrainingToolFrame : public QObject {
    Q_OBJECT
public:
    TrainingToolFrame(ui::WindowContext& context, QWidget* client);

    QFrame* frame() const { return frame_; }
    QPushButton* cmdCalibrate() const { return cmdCalibrate_; }
    ColourBox* picTargetColor() const { return picTargetColor_; }
    QLabel* lblAlarm() const { return lblAlarm_; }
    QPushButton* cmdStartTraining() const { return cmdStartTraining_; }
    QComboBox* cboAlarmType() const { return cboAlarmType_; }
    QTimer* tmrCalibrate() const { return tmrCalibrate_; }
    QTimer* tmrCountDown() const { return tmrCountDown_; }
    QTimer* tmrTraining() const { return tmrTraining_; }
    QTimer* tmrBlink3() const { return tmrBlink3_; }

private:
    ui::WindowContext& context_;
    QFrame* frame_ = nullptr;
    QPushButton* cmdCalibrate_ = nullptr;
    ColourBox* picTargetColor_ = nullptr;
    QLabel* lblAlarm_ = nullptr;
    QPushButton* cmdStartTraining_ = nullptr;
    QComboBox* cboAlarmType_ = nullptr;
    QTimer* tmrCalibrate_ = nullptr;
    QTimer* tmrCountDown_ = nullptr;
    QTimer* tmrTraining_ = nullptr;
    QTimer* tmrBlink3_ = nullptr;
};

} // namespace ravelcue::training
