#pragma once

#include "CaptureStats.h"
#include "DeviceControl.h"
#include "MediaError.h"
#include "VideoMode.h"
#include "core/AppSettings.h"

#include <QByteArray>
#include <QImage>
#include <QObject>
#include <QSize>
#include <QString>

namespace ravelcue::media {

using ravelcue::CodecSettings;

class VideoView;

// One camera position: connects to a device by index, previews it in its view, records it to a
// file. Methods are called on the UI thread; signals arrive on the UI thread. The instance owns
// its view; the caller places the view inside a pane.
class CaptureInstance : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    ~CaptureInstance() override = default;

    // Connection. Connecting opens VideoDevice with the size and rate set so far; every property
    // may be set while disconnected. A failed connect leaves the view blank and reports nothing.
    virtual void SetConnected(bool connected) = 0;
    virtual bool Connected() const = 0;
    virtual void SetVideoDevice(int deviceIndex) = 0;
    virtual int VideoDevice() const = 0;
    virtual void SetCaptureFrameRate(double framesPerSecond) = 0;
    // 0 renders for speed (preview only); 1 also keeps the newest frame for FrameBytes.
    virtual void SetRenderMode(int renderMode) = 0;
    virtual int RenderMode() const = 0;
    // Asks the device for this picture size; false when it cannot be had.
    virtual bool SetVideoSize(int width, int height) = 0;
    // What the device really delivers (0x0 while disconnected).
    virtual QSize GetVideoSize() const = 0;
    virtual double GetFrameRate() const = 0;
    // The modes VideoDevice offers, as preferredModes orders them; empty when it cannot say.
    // Asks the device afresh; it need not be connected.
    virtual std::vector<VideoMode> VideoModes() const = 0;
    // The device's own settings (brightness, contrast, exposure, ...), read afresh; empty when it
    // offers none. A value set takes effect at once and stays with the device for the run.
    virtual std::vector<DeviceControl> DeviceControls() const = 0;
    virtual bool SetDeviceControl(unsigned id, int value) = 0;
    virtual void SetPreview(bool preview) = 0;
    virtual bool Preview() const = 0;

    // Recording.
    virtual void SetCaptureFile(const QString& path) = 0;
    virtual QString CaptureFile() const = 0;
    virtual int CompressorCount() const = 0;
    virtual QString CompressorName(int n) const = 0;
    virtual void SetCompressorIndex(int n) = 0;
    virtual int CompressorIndex() const = 0;
    // The compressors' own settings, used by every later StartCapture with a compressor.
    virtual void SetCodecSettings(const CodecSettings& settings) = 0;
    virtual int ProfileCount() const = 0;
    virtual QString ProfileName(int n) const = 0;
    virtual void SetProfileIndex(int n) = 0;
    virtual int ProfileIndex() const = 0;
    // Start with the compressor (AVI) or profile (WMV) chosen by the file's extension. On
    // failure the error says why, naming the file.
    virtual MediaError StartCapture() = 0;
    virtual MediaError StartCaptureUncompressed() = 0;
    virtual void PauseCapture() = 0;
    virtual void ResumeCapture() = 0;
    virtual void StopCapture() = 0;
    virtual bool IsCapturing() const = 0;
    virtual CaptureStats GetCaptureStats() const = 0;

    // The newest frame as 640x480 BGR, bottom row first, 1920 bytes a row; empty without a frame.
    virtual QByteArray FrameBytes() const = 0;

    // Shape layer over the picture: RGB32, black lets the picture through, stretched to cover
    // the whole picture. A null image removes the layer.
    virtual void SetBitmapOverlay(const QImage& overlay) = 0;

    virtual VideoView* view() const = 0;

signals:
    // A recording ended on its own (device lost: DeviceUnavailable; disk full: DiskFull; any
    // other write failure: WriteFailed); the file is closed and playable up to that moment.
    void captureFailed(ravelcue::media::MediaError error);
};

} // namespace ravelcue::media
