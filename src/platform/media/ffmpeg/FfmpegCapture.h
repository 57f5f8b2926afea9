#pragma once

#include "../CaptureInstance.h"
#include "../VideoSource.h"
#include "../VideoView.h"
#include "CaptureFormats.h"
#include "CaptureRecorder.h"
#include "EngineContext.h"

#include <memory>
#include <mutex>
#include <thread>

#include <QPointer>

namespace ravelcue::media::ffmpeg {

// A camera position: one worker thread reads the camera (a device or a demo scene), shows each
// picture in the view, keeps the newest for FrameBytes and offers it to the recording, whose
// encoder runs on a thread of its own. UI thread only, as CaptureInstance says; destroy it
// before the widget that holds its view.
class FfmpegCapture final : public CaptureInstance {
    Q_OBJECT
public:
    explicit FfmpegCapture(std::shared_ptr<EngineContext> engine);
    ~FfmpegCapture() override;

    void SetConnected(bool connected) override;
    bool Connected() const override { return source_ != nullptr; }
    void SetVideoDevice(int deviceIndex) override { device_ = deviceIndex; }
    int VideoDevice() const override { return device_; }
    // Taken at the next connection.
    void SetCaptureFrameRate(double framesPerSecond) override;
    void SetRenderMode(int renderMode) override;
    int RenderMode() const override { return renderMode_; }
    bool SetVideoSize(int width, int height) override;
    QSize GetVideoSize() const override;
    double GetFrameRate() const override;
    std::vector<VideoMode> VideoModes() const override;
    std::vector<DeviceControl> DeviceControls() const override;
    bool SetDeviceControl(unsigned id, int value) override;
    void SetPreview(bool preview) override { preview_ = preview; }
    bool Preview() const override { return preview_; }

    void SetCaptureFile(const QString& path) override { file_ = path; }
    QString CaptureFile() const override { return file_; }
    int CompressorCount() const override;
    QString CompressorName(int n) const override;
    void SetCompressorIndex(int n) override { compressor_ = n; }
    int CompressorIndex() const override { return compressor_; }
    void SetCodecSettings(const CodecSettings& settings) override { codecSettings_ = settings; }
    int ProfileCount() const override;
    QString ProfileName(int n) const override;
    void SetProfileIndex(int n) override { profile_ = n; }
    int ProfileIndex() const override { return profile_; }
    MediaError StartCapture() override;
    MediaError StartCaptureUncompressed() override;
    void PauseCapture() override;
    void ResumeCapture() override;
    void StopCapture() override;
    bool IsCapturing() const override;
    CaptureStats GetCaptureStats() const override;

    QByteArray FrameBytes() const override;
    void SetBitmapOverlay(const QImage& overlay) override;
    VideoView* view() const override { return view_; }

    // The name of the device now open, for messages.
    QString deviceName() const { return deviceName_; }

private:
    std::unique_ptr<VideoSource> openSource(QSize size, QString& reason);
    void startWorker();
    void stopWorker();
    void runWorker(std::stop_token stop, VideoSource* source);
    MediaError startRecording(VideoCodec codec, const EncoderOptions& options);
    void sourceLost(const QString& reason);
    void recordingFailed(const MediaError& error, std::uint64_t recording);
    void reportFailure(const MediaError& error);

    std::shared_ptr<EngineContext> engine_;
    QPointer<VideoView> view_;

    int device_ = -1;
    double frameRate_ = 30;
    int renderMode_ = 0;
    QSize requestedSize_{640, 480};
    QString file_;
    int compressor_ = 0;
    CodecSettings codecSettings_;
    int profile_ = 0;

    std::unique_ptr<VideoSource> source_;
    QString deviceName_;
    std::jthread worker_;
    std::atomic<bool> preview_{false};
    std::atomic<bool> keepNewest_{false};
    mutable std::mutex newestMutex_;
    QImage newest_;

    mutable std::mutex recorderMutex_;
    std::shared_ptr<CaptureRecorder> recorder_; // the running or the last recording
    std::uint64_t recordings_ = 0; // numbers the recordings, to tell their reports apart
    bool failureReported_ = false;
};

} // namespace ravelcue::media::ffmpeg
