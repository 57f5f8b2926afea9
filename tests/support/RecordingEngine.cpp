#include "RecordingEngine.h"

#include "platform/media/AudioInstance.h"
#include "platform/media/CaptureInstance.h"
#include "platform/media/DeviceCatalog.h"
#include "platform/media/PlayerInstance.h"
#include "platform/media/RecompressInstance.h"
#include "platform/media/VideoView.h"

#include <algorithm>
#include <cmath>

#include <QGuiApplication>
#include <QPointer>

namespace ravelcue::test {

namespace {

using Log = std::shared_ptr<QStringList>;

class ListedDevices final : public media::DeviceCatalog {
public:
    ListedDevices(QStringList video, QStringList audio)
        : video_(std::move(video))
        , audio_(std::move(audio)) {}
    void refresh() override {}
    int VideoDeviceCount() const override { return static_cast<int>(video_.size()); }
    QString VideoDeviceName(int i) const override { return video_.value(i); }
    int AudioDeviceCount() const override { return static_cast<int>(audio_.size()); }
    QString AudioDeviceName(int i) const override { return audio_.value(i); }

private:
    QStringList video_;
    QStringList audio_;
};

class Recorder {
public:
    Recorder(Log log, QString name)
        : log_(std::move(log))
        , name_(std::move(name)) {}
    void note(const QString& call) const { log_->append(name_ + QLatin1Char('.') + call); }

private:
    Log log_;
    QString name_;
};

QString arg(double value) {
    return QString::number(value);
}

using Behaviour = std::shared_ptr<RecordingEngine::CaptureBehaviour>;

class RecordingCapture final : public media::CaptureInstance, Recorder {
public:
    RecordingCapture(Log log, int index, Behaviour behaviour)
        : Recorder(std::move(log), QStringLiteral("cam%1").arg(index))
        , view_(new media::VideoView)
        , index_(index)
        , behaviour_(std::move(behaviour)) {}
    ~RecordingCapture() override { delete view_.data(); }

    void SetConnected(bool c) override {
        connected_ = c;
        note(QStringLiteral("SetConnected(%1)").arg(c));
    }
    bool Connected() const override { return connected_; }
    void SetVideoDevice(int i) override {
        device_ = i;
        note(QStringLiteral("SetVideoDevice(%1)").arg(i));
    }
    int VideoDevice() const override { return device_; }
    void SetCaptureFrameRate(double fps) override {
        note(QStringLiteral("SetCaptureFrameRate(%1)").arg(arg(fps)));
    }
    void SetRenderMode(int m) override {
        renderMode_ = m;
        note(QStringLiteral("SetRenderMode(%1)").arg(m));
    }
    int RenderMode() const override { return renderMode_; }
    bool SetVideoSize(int w, int h) override {
        note(QStringLiteral("SetVideoSize(%1,%2)").arg(w).arg(h));
        return true;
    }
    QSize GetVideoSize() const override { return {640, 480}; }
    double GetFrameRate() const override { return 30; }
    std::vector<media::VideoMode> VideoModes() const override { return {}; }
    std::vector<media::DeviceControl> DeviceControls() const override { return {}; }
    bool SetDeviceControl(unsigned, int) override { return false; }
    void SetPreview(bool p) override {
        preview_ = p;
        note(QStringLiteral("SetPreview(%1)").arg(p));
    }
    bool Preview() const override { return preview_; }
    void SetCaptureFile(const QString& p) override {
        file_ = p;
        note(QStringLiteral("SetCaptureFile(%1)").arg(p));
    }
    QString CaptureFile() const override { return file_; }
    int CompressorCount() const override {
        return static_cast<int>(behaviour_->compressors.size());
    }
    QString CompressorName(int n) const override { return behaviour_->compressors.value(n); }
    void SetCodecSettings(const CodecSettings& s) override {
        note(QStringLiteral("SetCodecSettings(%1,%2,%3,%4,%5)")
                 .arg(s.MjpegQuality)
                 .arg(s.H264BitRate)
                 .arg(s.H264KeyFrameInterval)
                 .arg(s.Mpeg4BitRate)
                 .arg(s.Mpeg4KeyFrameInterval));
    }
    void SetCompressorIndex(int n) override {
        note(QStringLiteral("SetCompressorIndex(%1)").arg(n));
    }
    int CompressorIndex() const override { return -1; }
    int ProfileCount() const override { return static_cast<int>(behaviour_->profiles.size()); }
    QString ProfileName(int n) const override { return behaviour_->profiles.value(n); }
    void SetProfileIndex(int n) override { note(QStringLiteral("SetProfileIndex(%1)").arg(n)); }
    int ProfileIndex() const override { return 0; }
    media::MediaError StartCapture() override {
        note(QStringLiteral("StartCapture()"));
        return start();
    }
    media::MediaError StartCaptureUncompressed() override {
        note(QStringLiteral("StartCaptureUncompressed()"));
        return start();
    }
    void PauseCapture() override { note(QStringLiteral("PauseCapture()")); }
    void ResumeCapture() override { note(QStringLiteral("ResumeCapture()")); }
    void StopCapture() override {
        capturing_ = false;
        note(QStringLiteral("StopCapture()"));
    }
    bool IsCapturing() const override { return capturing_; }
    media::CaptureStats GetCaptureStats() const override { return behaviour_->stats; }
    media::MediaError start() {
        capturing_ = !behaviour_->camerasThatFailToStart.contains(index_);
        if (!capturing_) {
            return {media::media_error::WriteFailed,
                    QStringLiteral("Cannot create %1: Permission denied").arg(file_)};
        }
        return {};
    }
    QByteArray FrameBytes() const override { return {}; }
    void SetBitmapOverlay(const QImage&) override { note(QStringLiteral("SetBitmapOverlay()")); }
    media::VideoView* view() const override { return view_; }

private:
    QPointer<media::VideoView> view_;
    int index_;
    Behaviour behaviour_;
    bool capturing_ = false;
    bool connected_ = false;
    bool preview_ = false;
    int device_ = -1;
    int renderMode_ = 0;
    QString file_;
};

using Files = std::shared_ptr<RecordingEngine::PlayerBehaviour>;

class RecordingPlayer final : public media::PlayerInstance, Recorder {
public:
    RecordingPlayer(Log log, int index, Files files)
        : Recorder(std::move(log), QStringLiteral("player%1").arg(index))
        , view_(new media::VideoView)
        , index_(index)
        , files_(std::move(files)) {
        // Connected first, so the window finds the counted length when the signal reaches it.
        connect(this, &media::PlayerInstance::lengthKnown, this, [this] {
            if (file_.countedDurationMs > 0) {
                file_.durationMs = file_.countedDurationMs;
                file_.frameCount = file_.countedFrameCount;
            }
        });
    }
    ~RecordingPlayer() override { delete view_.data(); }

    media::MediaError PlayerOpen(const QString& path) override {
        note(QStringLiteral("PlayerOpen(%1)").arg(path));
        open_ = false;
        const RecordingEngine::MediaFile file = files_->files.value(path, files_->defaultFile);
        if (file.openError != 0) {
            return {file.openError, QStringLiteral("cannot open ") + path};
        }
        file_ = file;
        open_ = true;
        playing_ = false;
        posMs_ = 0;
        frame_ = 0;
        return {};
    }
    void PlayerClose() override {
        open_ = false;
        playing_ = false;
        note(QStringLiteral("PlayerClose()"));
    }
    bool IsOpen() const override { return open_; }
    void PlayerPlay() override {
        playing_ = open_;
        note(QStringLiteral("PlayerPlay()"));
    }
    void PlayerStop() override {
        playing_ = false;
        note(QStringLiteral("PlayerStop()"));
    }
    bool IsPlaying() const override { return playing_; }
    void PlayerSetRate(double r) override { note(QStringLiteral("PlayerSetRate(%1)").arg(arg(r))); }
    double PlayerGetPos() const override {
        noteIfBusy(QStringLiteral("PlayerGetPos()"));
        return open_ ? posMs_ : 0;
    }
    void PlayerSetPos(double ms) override {
        note(QStringLiteral("PlayerSetPos(%1)").arg(arg(ms)));
        if (open_) {
            posMs_ = std::clamp(ms, 0.0, file_.durationMs);
            frame_ = std::round(posMs_ / msPerFrame());
        }
    }
    double PlayerGetFrame() const override {
        noteIfBusy(QStringLiteral("PlayerGetFrame()"));
        return open_ ? frame_ : 0;
    }
    bool PlayerAnswers(std::chrono::milliseconds) const override { return !busy(); }
    void PlayerSetFrame(double f) override {
        note(QStringLiteral("PlayerSetFrame(%1)").arg(arg(f)));
        if (open_) {
            frame_ = std::clamp(f, 0.0, std::max(0.0, file_.frameCount - 1.0));
            posMs_ = frame_ * msPerFrame();
        }
    }
    QSize PlayerGetSize() const override { return open_ ? file_.size : QSize(); }
    double PlayerGetDuration() const override { return open_ ? file_.durationMs : 0; }
    int PlayerGetFrameCount() const override { return open_ ? file_.frameCount : 0; }
    int PictureWidth() const override { return PlayerGetSize().width(); }
    int PictureHeight() const override { return PlayerGetSize().height(); }
    void SetZoomRegion(int, int, int, int) override {}
    media::MediaError PlayerSaveFrame(const QString& path, int quality) override {
        note(QStringLiteral("PlayerSaveFrame(%1,%2)").arg(path).arg(quality));
        const QCursor* cursor = QGuiApplication::overrideCursor();
        files_->cursorAtSave = cursor != nullptr ? cursor->shape() : Qt::ArrowCursor;
        if (!open_) {
            return {media::media_error::NotConnected, QStringLiteral("No file is open")};
        }
        if (busy()) {
            return {
                media::media_error::Busy,
                QStringLiteral("The player did not reach the frame asked for within 30 seconds")};
        }
        return {};
    }
    void SetBitmapOverlay(const QImage& overlay) override {
        note(QStringLiteral("SetBitmapOverlay(%1x%2)").arg(overlay.width()).arg(overlay.height()));
    }
    void SetTextOverlay(int slot, const QString& text, int, int, const QString&, int,
                        QColor) override {
        note(QStringLiteral("SetTextOverlay(%1,%2)").arg(slot).arg(text));
    }
    media::VideoView* view() const override { return view_; }

private:
    bool busy() const { return files_->busy.contains(index_); }
    void noteIfBusy(const QString& call) const {
        if (busy()) {
            note(call + QStringLiteral(" while busy"));
        }
    }
    double msPerFrame() const {
        return file_.frameCount > 0 ? file_.durationMs / file_.frameCount : 1.0;
    }

    QPointer<media::VideoView> view_;
    int index_;
    Files files_;
    RecordingEngine::MediaFile file_;
    bool open_ = false;
    bool playing_ = false;
    double posMs_ = 0;
    double frame_ = 0;
};

class RecordingRecompress final : public media::RecompressInstance, Recorder {
public:
    RecordingRecompress(Log log, int index)
        : RecompressInstance(index)
        , Recorder(std::move(log), QStringLiteral("recompress%1").arg(index)) {}
    void SetBitmapOverlay(const QImage& overlay) override {
        note(QStringLiteral("SetBitmapOverlay(%1x%2)").arg(overlay.width()).arg(overlay.height()));
    }
    void SetTextOverlay(int slot, const QString& text, int, int, const QString&, int,
                        QColor) override {
        note(QStringLiteral("SetTextOverlay(%1,%2)").arg(slot).arg(text));
    }
    bool Recompress(const QString&, const QString&, double, double) override { return false; }
    void Cancel() override {}
    bool IsBusy() const override { return false; }
};

class RecordingAudio final : public media::AudioInstance, Recorder {
public:
    explicit RecordingAudio(Log log)
        : Recorder(std::move(log), QStringLiteral("audio")) {}
    void SetAudioDevice(int i) override {
        device_ = i;
        note(QStringLiteral("SetAudioDevice(%1)").arg(i));
    }
    int AudioDevice() const override { return device_; }
    bool SetConnected(bool c) override {
        connected_ = c;
        note(QStringLiteral("SetConnected(%1)").arg(c));
        return true;
    }
    bool Connected() const override { return connected_; }
    void SetCaptureFile(const QString& p) override {
        file_ = p;
        note(QStringLiteral("SetCaptureFile(%1)").arg(p));
    }
    QString CaptureFile() const override { return file_; }
    media::MediaError StartCapture() override {
        note(QStringLiteral("StartCapture()"));
        return {};
    }
    void StopCapture() override { note(QStringLiteral("StopCapture()")); }
    bool IsCapturing() const override { return false; }
    int AudioLevel() const override { return 0; }

private:
    int device_ = 0;
    bool connected_ = false;
    QString file_;
};

} // namespace

RecordingEngine::RecordingEngine(QStringList videoDevices, QStringList audioDevices)
    : log_(std::make_shared<QStringList>())
    , devices_(std::make_unique<ListedDevices>(std::move(videoDevices), std::move(audioDevices))) {}

RecordingEngine::~RecordingEngine() = default;

media::DeviceCatalog& RecordingEngine::devices() {
    return *devices_;
}

std::unique_ptr<media::CaptureInstance> RecordingEngine::createCapture(int index) {
    return std::make_unique<RecordingCapture>(log_, index, behaviour_);
}

std::unique_ptr<media::PlayerInstance> RecordingEngine::createPlayer(int index) {
    return std::make_unique<RecordingPlayer>(log_, index, players_);
}

std::unique_ptr<media::RecompressInstance> RecordingEngine::createRecompress(int index) {
    return std::make_unique<RecordingRecompress>(log_, index);
}

std::unique_ptr<media::AudioInstance> RecordingEngine::createAudio() {
    return std::make_unique<RecordingAudio>(log_);
}

QStringList RecordingEngine::calls(const QString& prefix) const {
    QStringList found;
    for (const QString& call : *log_) {
        if (call.startsWith(prefix)) {
            found << call;
        }
    }
    return found;
}

} // namespace ravelcue::test
