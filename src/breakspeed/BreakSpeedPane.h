#pragma once

#include "breakspeed/AudioAnalysis.h"
#include "platform/media/MediaError.h"

#include <QObject>
#include <QPointer>

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
namespace ravelcue::sound {
class SoundOutput;
}

namespace ravelcue::breakspeed {

class BreakSpeedLogDialog;
class WaveformBox;

// The break speed pane picBreakSpeed (the two waveform views and the status line between them)
// and its tool frame fmBreakSpeedTB: a shot recorded from the microphone, measured by rule or by
// hand, and handed to the log. UI thread only.
class BreakSpeedPane : public QObject {
    Q_OBJECT
public:
    BreakSpeedPane(ui::WindowContext& context, sound::SoundOutput& sound, QWidget* client);

    QFrame* pane() const { return picBreakSpeed_; }
    QFrame* toolFrame() const { return fmBreakSpeedTB_; }
    WaveformBox* picture1() const { return Picture1_; }
    WaveformBox* picture2() const { return Picture2_; }
    QLabel* lblBreakStatus() const { return lblBreakStatus_; }
    QPushButton* cmdCalTone() const { return cmdCalTone_; }
    QComboBox* cboThreshold() const { return cboThreshold_; }
    QLineEdit* txtDistance() const { return txtDistance_; }
    QLabel* lblDistance() const { return lblDistance_; }
    QLabel* lblSpeed() const { return lblSpeed_; }
    // The open log, or null.
    BreakSpeedLogDialog* logDialog() const;

    // Copies the pane's inner layout onto the widgets.
    void applyGeometry();

    // Starts a capture, or stops it and measures the recording, by the button's caption.
    void cmdStartBreakSpeed_Click();
    void tmrBlink2_Timer();
    // Records the 400 Hz calibration tone for marking by hand.
    void cmdCalTone_Click();
    void cmdBreakSpeedLog_Click();
    void txtDistance_Change();
    // Loads the recording again and measures it at the threshold now chosen.
    void cboThreshold_Click();

    // Replaces the samples from breakspeed.wav and draws them whole in Picture1. False (and only
    // the status changed) when there is no recording.
    bool LoadAudioFile();
    // Finds the peaks of the samples and shows what they give.
    void DetectPeaks();

signals:
    // The log's Help button asks for its help topic.
    void helpRequested(int topic);

private:
    void Picture1_MouseDown(double x);
    void Picture1_MouseUp(double x);
    void Picture2_MouseDown(double x);
    void Picture2_MouseUp(double x);

    void apply(const PaneUpdate& update);
    void setStatus(const QString& text, std::uint32_t colour);
    SpeedSettings speedSettings() const;
    QString dataFile(const char* name) const;
    // Back to the configured distance if the calibration tone left one of its own behind.
    void restoreDistanceAfterCalibration();

    ui::WindowContext& context_;
    sound::SoundOutput& sound_;
    QFrame* picBreakSpeed_ = nullptr;
    QFrame* fmBreakSpeedTB_ = nullptr;
    WaveformBox* Picture1_ = nullptr;
    WaveformBox* Picture2_ = nullptr;
    QLabel* lblBreakStatus_ = nullptr;
    QPushButton* cmdStartBreakSpeed_ = nullptr;
    QPushButton* cmdCalTone_ = nullptr;
    QPushButton* cmdBreakSpeedLog_ = nullptr;
    QComboBox* cboThreshold_ = nullptr;
    QLineEdit* txtDistance_ = nullptr;
    QLineEdit* txtDeltaTime_ = nullptr;
    QLineEdit* txtSpeed_ = nullptr;
    QLineEdit* txtEnergy_ = nullptr;
    QLabel* lblDistance_ = nullptr;
    QLabel* lblSpeed_ = nullptr;
    QTimer* tmrBlink2_ = nullptr;
    QPointer<BreakSpeedLogDialog> frmBreakSpeedLog_;

    void captureNotStarted(const media::MediaError& error);
    void forgetRecording();

    AudioSamples samples_;        // AudioSamples: the last recording, header and all
    bool recordingStale_ = false; // the last capture wrote nothing
    int scaleHeight_ = 0;         // of samples_, the same for both views
    int AudioSelStart_ = 0;
    int AudioSelEnd_ = 0;
    int MarkStart_ = 0;
    int MarkEnd_ = 0;
    int CaptureCountdown_ = 0;
    // -1 while the button shows "Stop Capture". Not reset at a stop, so a capture stopped in
    // that half starts the next one with the dark half.
    int BlinkOn_ = 0;
};

} // namespace ravelcue::breakspeed
