#include "DetachedEngine.h"

#include "AudioInstance.h"
#include "CaptureInstance.h"
#include "DeviceCatalog.h"
#include "PlayerInstance.h"
#include "RecompressInstance.h"
#include "VideoView.h"

#include <QPointer>

namespace ravelcue::media {

namespace {

class NoDevices final : public DeviceCatalog {
public:
    void refresh() override {}
    int VideoDeviceCount() const override { return 0; }
    QString VideoDeviceName(int) const override { return {}; }
    int AudioDeviceCount() const override { return 0; }
    QString AudioDeviceName(int) const override { return {}; }
};

class DetachedCapture final : public CaptureInstance {
public:
    DetachedCapture()
        : view_(new VideoView) {}
    ~DetachedCapture() override { delete view_.data(); }

    void SetConnected(bool) override {}
    bool Connected() const override { return false; }
    void SetVideoDevice(int index) override { device_ = index; }
    int VideoDevice() const override { return device_; }
    void SetCaptureFrameRate(double) override {}
    void SetCaptureAudio(bool) override {}
    void SetRenderMode(int mode) override { renderMode_ = mode; }
    int RenderMode() const override { return renderMode_; }
    void SetPreviewScale(bool) override {}
    bool SetVideoSize(int, int) override { return false; }
    QSize GetVideoSize() const override { return {}; }
    double GetFrameRate() const override { return 0; }
    void SetPreview(bool) override {}
    bool Preview() const override { return false; }
    void SetSetting(int, int) override {}
    void SetCaptureFile(const QString& path) override { file_ = path; }
    QString CaptureFile() const override { return file_; }
    int CompressorCount() const override { return 0; }
    QString CompressorName(int) const override { return {}; }
    void SetCompressorIndex(int) override {}
    int CompressorIndex() const override { return -1; }
    int ProfileCount() const override { return 0; }
    QString ProfileName(int) const override { return {}; }
    void SetProfileIndex(int) override {}
    int ProfileIndex() const override { return 0; }
    bool StartCapture() override { return false; }
    bool StartCaptureUncompressed() override { return false; }
    void PauseCapture() override {}
    void ResumeCapture() override {}
    void StopCapture() override {}
    bool IsCapturing() const override { return false; }
    CaptureStats GetCaptureStats() const override { return {}; }
    QByteArray FrameBytes() const override { return {}; }
    void SetBitmapOverlay(const QImage&) override {}
    VideoView* view() const override { return view_; }

private:
    QPointer<VideoView> view_;
    int device_ = -1;
    int renderMode_ = 0;
    QString file_;
};

class DetachedPlayer final : public PlayerInstance {
public:
    DetachedPlayer()
        : view_(new VideoView) {}
    ~DetachedPlayer() override { delete view_.data(); }

    void SetConnected(bool connected) override { connected_ = connected; }
    bool Connected() const override { return connected_; }
    void SetVideoSize(int, int) override {}
    void SetRenderMode(int) override {}
    void SetCaptureAudio(bool) override {}
    void SetSetting(int, int) override {}
    MediaError PlayerOpen(const QString&) override {
        return {media_error::UnreadableFile, QStringLiteral("No media engine")};
    }
    void PlayerClose() override {}
    bool IsOpen() const override { return false; }
    void PlayerPlay() override {}
    void PlayerStop() override {}
    bool IsPlaying() const override { return false; }
    void PlayerSetRate(double) override {}
    double PlayerGetPos() const override { return 0; }
    void PlayerSetPos(double) override {}
    double PlayerGetFrame() const override { return 0; }
    void PlayerSetFrame(double) override {}
    QSize PlayerGetSize() const override { return {}; }
    double PlayerGetDuration() const override { return 0; }
    int PlayerGetFrameCount() const override { return 0; }
    int PictureWidth() const override { return 0; }
    int PictureHeight() const override { return 0; }
    void SetZoomRegion(int, int, int, int) override {}
    bool PlayerSaveFrame(const QString&, int) override { return false; }
    void SetBitmapOverlay(const QImage&) override {}
    void SetTextOverlay(int, const QString&, int, int, const QString&, int, QColor) override {}
    VideoView* view() const override { return view_; }

private:
    QPointer<VideoView> view_;
    bool connected_ = false;
};

class DetachedRecompress final : public RecompressInstance {
public:
    using RecompressInstance::RecompressInstance;
    void SetBitmapOverlay(const QImage&) override {}
    void SetTextOverlay(int, const QString&, int, int, const QString&, int, QColor) override {}
    bool Recompress(const QString&, const QString&, const QString&, double, double) override {
        return false;
    }
    void Cancel() override {}
    bool IsBusy() const override { return false; }
};

class DetachedAudio final : public AudioInstance {
public:
    void SetAudioDevice(int index) override { device_ = index; }
    int AudioDevice() const override { return device_; }
    bool SetConnected(bool connected) override { return !connected; }
    bool Connected() const override { return false; }
    void SetVideoDevice(int) override {}
    void SetCaptureAudio(bool) override {}
    void SetCaptureFile(const QString& path) override { file_ = path; }
    QString CaptureFile() const override { return file_; }
    bool StartCapture() override { return false; }
    void StopCapture() override {}
    bool IsCapturing() const override { return false; }
    void SetPreview(bool) override {}
    int AudioLevel() const override { return 0; }

private:
    int device_ = 0;
    QString file_;
};

} // namespace

DetachedEngine::DetachedEngine()
    : devices_(std::make_unique<NoDevices>()) {}
DetachedEngine::~DetachedEngine() = default;

DeviceCatalog& DetachedEngine::devices() {
    return *devices_;
}
std::unique_ptr<CaptureInstance> DetachedEngine::createCapture(int) {
    return std::make_unique<DetachedCapture>();
}
std::unique_ptr<PlayerInstance> DetachedEngine::createPlayer(int) {
    return std::make_unique<DetachedPlayer>();
}
std::unique_ptr<RecompressInstance> DetachedEngine::createRecompress(int index) {
    return std::make_unique<DetachedRecompress>(index);
}
std::unique_ptr<AudioInstance> DetachedEngine::createAudio() {
    return std::make_unique<DetachedAudio>();
}

} // namespace ravelcue::media
