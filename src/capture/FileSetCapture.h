#pragma once

#include "EncoderChoice.h"
#include "platform/media/MediaError.h"

#include <array>
#include <functional>

#include <QObject>
#include <QString>

namespace ravelcue::ui {
struct WindowContext;
}

namespace ravelcue::capture {

class CaptureToolFrame;
class LiveView;

// Recording the ticked cameras together into a file Set: the start button with its checks, the
// held start and the release of every camera in one loop, the blinking stop button with the
// running count, and the stop. UI thread only.
class FileSetCapture : public QObject {
    Q_OBJECT
public:
    using PlayBeep = std::function<void(int frequency, int milliseconds)>;

    FileSetCapture(ui::WindowContext& context, CaptureToolFrame& frame, LiveView& liveView,
                   PlayBeep playBeep);

    void cmdStartCapture_Click();
    void txtFileName_Click();
    void tmrBlink_Timer();

    bool isRecording() const { return recording_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Start();
    void Stop();
    bool passesChecks();
    bool clearExistingFiles(const QString& folder, const QString& base, const QString& extension);
    EncoderChoice chooseEncoder() const;
    void showCaptureStatus(const QString& base, const QString& extension,
                           const EncoderChoice& encoder);
    media::MediaError startAndHold(int camera, const EncoderChoice& encoder);
    void rejectName(const QString& redText);
    void cameraFailed(int camera, const media::MediaError& error);
    QString cameraLabel(int camera) const;

    ui::WindowContext& context_;
    CaptureToolFrame& frame_;
    LiveView& liveView_;
    PlayBeep playBeep_;
    std::array<bool, 4> ticked_{};
    std::array<bool, 4> recordingCamera_{};
    bool starting_ = false;
    bool stopWhenStarted_ = false;
    bool recording_ = false;
    // Which half of the blink shows; not reset between captures.
    bool CaptureBlinkOn = false;
};

} // namespace ravelcue::capture
