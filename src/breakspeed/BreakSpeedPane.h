#pragma once

#include <QObject>

class QComboBox;
class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;
class QTimer;
class QWidget;

namespace ravelcue::ui {
struct WindowContext;
}

namespace ravelcue::breakspeed {

// The break speed pane picBreakSpeed (the two waveform views and the status line between them)
// and its tool frame fmBreakSpeedTB. UI thread only.
class BreakSpeedPane : public QObject {
    Q_OBJECT
public:
    BreakSpeedPane(ui::WindowContext& context, QWidget* client);

    QFrame* pane() const { return picBreakSpeed_; }
    QFrame* toolFrame() const { return fmBreakSpeedTB_; }
    QWidget* picture1() const { return picture1_; }
    QWidget* picture2() const { return picture2_; }
    QLabel* lblBreakStatus() const { return lblBreakStatus_; }
    QPushButton* cmdCalTone() const { return cmdCalTone_; }
    QComboBox* cboThreshold() const { return cboThreshold_; }
    QLineEdit* txtDistance() const { return txtDistance_; }
    QLabel* lblDistance() const { return lblDistance_; }
    QLabel* lblSpeed() const { return lblSpeed_; }

    // Copies the pane's inner layout onto the widgets.
    void applyGeometry();

private:
    ui::WindowContext& context_;
    QFrame* picBreakSpeed_ = nullptr;
    QFrame* fmBreakSpeedTB_ = nullptr;
    QWidget* picture1_ = nullptr;
    QWidget* picture2_ = nullptr;
    QLabel* lblBreakStatus_ = nullptr;
    QPushButton* cmdCalTone_ = nullptr;
    QComboBox* cboThreshold_ = nullptr;
    QLineEdit* txtDistance_ = nullptr;
    QLabel* lblDistance_ = nullptr;
    QLabel* lblSpeed_ = nullptr;
    QTimer* tmrBlink2_ = nullptr;
};

} // namespace ravelcue::breakspeed
