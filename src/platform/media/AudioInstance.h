#pragma once

#include "MediaError.h"

#include <QObject>
#include <QString>

namespace ravelcue::media {

// The microphone: records WAV (44,100 frames a second, 16-bit, stereo, 44-byte header) to
// CaptureFile, and reports the input level while previewing. UI thread only.
class AudioInstance : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    ~AudioInstance() override = default;

    virtual void SetAudioDevice(int deviceIndex) = 0;
    virtual int AudioDevice() const = 0;
    // Returns false when the device cannot be opened.
    virtual bool SetConnected(bool connected) = 0;
    virtual bool Connected() const = 0;
    virtual void SetCaptureFile(const QString& path) = 0;
    virtual QString CaptureFile() const = 0;
    // On failure the error says why, naming the file.
    virtual MediaError StartCapture() = 0;
    virtual void StopCapture() = 0;
    virtual bool IsCapturing() const = 0;
    // 0..100, the loudest of the last quarter second.
    virtual int AudioLevel() const = 0;

signals:
    // A recording ended on its own (device lost, disk full); what was written stays readable.
    void captureFailed(const QString& reason);
};

} // namespace ravelcue::media
