#include "FfmpegCapture.h"

#include "../LiveFrame.h"
#include "../VideoView.h"
#include "CaptureFormats.h"
#include "DeviceVideoSource.h"
#include "V4l2Controls.h"
#include "V4l2Modes.h"

#include <QFileInfo>
#include <QMetaObject>

namespace ravelcue::media::ffmpeg {

namespace {

constexpr int kSmallestSide = 16;

QString fileNameOf(const QString& path) {
    return QFileInfo(path).fileName();
}

} // namespace

FfmpegCapture::FfmpegCapture(std::shared_ptr<EngineContext> engine)
    : engine_(std::move(engine))
    , view_(new VideoView) {}

FfmpegCapture::~FfmpegCapture() {
    SetConnected(false);
    delete view_.data();
}

void FfmpegCapture::SetConnected(bool connected) {
    if (connected == Connected()) {
        return;
    }
    if (!connected) {
        StopCapture();
        stopWorker();
        source_.reset();
        deviceName_.clear();
        if (view_) {
            view_->presentFrame(QImage());
        }
        return;
    }
    QString reason;
    source_ = openSource(requestedSize_, reason);
    if (!source_) {
        if (view_) {
            view_->presentFrame(QImage());
        }
        return;
    }
    startWorker();
}

std::vector<VideoMode> FfmpegCapture::VideoModes() const {
    const VideoDeviceEntry* device = engine_->devices.videoDevice(device_);
    if (device == nullptr) {
        return {};
    }
    if (device->demoNumber > 0) {
        return DemoCameraSource::modes();
    }
    if (device->inputFormat == QLatin1String("video4linux2")) {
        return preferredModes(queryV4l2Modes(device->url));
    }
    return {};
}

std::vector<DeviceControl> FfmpegCapture::DeviceControls() const {
    const VideoDeviceEntry* device = engine_->devices.videoDevice(device_);
    if (device == nullptr) {
        return {};
    }
    if (device->demoNumber > 0) {
        return demoCameraControls(*engine_->demoPlugs[size_t(device->demoNumber - 1)]);
    }
    if (device->inputFormat == QLatin1String("video4linux2")) {
        return queryV4l2Controls(device->url);
    }
    return {};
}

bool FfmpegCapture::SetDeviceControl(unsigned id, int value) {
    const VideoDeviceEntry* device = engine_->devices.videoDevice(device_);
    if (device == nullptr) {
        return false;
    }
    if (device->demoNumber > 0) {
        return setDemoCameraControl(*engine_->demoPlugs[size_t(device->demoNumber - 1)], id, value);
    }
    if (device->inputFormat == QLatin1String("video4linux2")) {
        return setV4l2Control(device->url, id, value);
    }
    return false;
}

std::unique_ptr<VideoSource> FfmpegCapture::openSource(QSize size, QString& reason) {
    const VideoDeviceEntry* device = engine_->devices.videoDevice(device_);
    if (device == nullptr) {
        reason = QStringLiteral("No camera at position %1").arg(device_);
        return nullptr;
    }
    deviceName_ = device->name;
    if (device->demoNumber > 0) {
        const auto& plug = engine_->demoPlugs[size_t(device->demoNumber - 1)];
        if (!plug->present.load()) {
            reason = QStringLiteral("%1 is unplugged").arg(device->name);
            return nullptr;
        }
        return std::make_unique<DemoCameraSource>(device->demoNumber, size, frameRate_,
                                                  engine_->clock, plug);
    }
    return DeviceVideoSource::open(*device, size, frameRate_, reason);
}

void FfmpegCapture::startWorker() {
    VideoSource* source = source_.get();
    worker_ = std::jthread([this, source](std::stop_token stop) { runWorker(stop, source); });
}

void FfmpegCapture::stopWorker() {
    if (worker_.joinable()) {
        worker_.request_stop();
        worker_.join();
    }
    std::lock_guard lock(newestMutex_);
    newest_ = QImage();
}

void FfmpegCapture::runWorker(std::stop_token stop, VideoSource* source) {
    SourceFrame frame;
    QString reason;
    VideoView* view = view_.data();
    for (;;) {
        const VideoSource::Read result = source->read(frame, stop, reason);
        if (result == VideoSource::Read::Stopped) {
            return;
        }
        if (result == VideoSource::Read::Lost) {
            QMetaObject::invokeMethod(
                this, [this, reason] { sourceLost(reason); }, Qt::QueuedConnection);
            return;
        }
        if (preview_.load() && view != nullptr) {
            view->presentFrame(frame.image);
        }
        if (keepNewest_.load()) {
            std::lock_guard lock(newestMutex_);
            newest_ = frame.image;
        }
        std::shared_ptr<CaptureRecorder> recorder;
        {
            std::lock_guard lock(recorderMutex_);
            recorder = recorder_;
        }
        if (recorder) {
            recorder->offer(frame.image, frame.captured);
        }
    }
}

void FfmpegCapture::SetCaptureFrameRate(double framesPerSecond) {
    if (framesPerSecond > 0 && framesPerSecond <= 240) {
        frameRate_ = framesPerSecond;
    }
}

void FfmpegCapture::SetRenderMode(int renderMode) {
    renderMode_ = renderMode;
    keepNewest_ = renderMode == 1;
    if (!keepNewest_) {
        std::lock_guard lock(newestMutex_);
        newest_ = QImage();
    }
}

bool FfmpegCapture::SetVideoSize(int width, int height) {
    const QSize size(width, height);
    if (width < kSmallestSide || height < kSmallestSide) {
        return false;
    }
    const VideoDeviceEntry* device = engine_->devices.videoDevice(device_);
    if (device != nullptr && device->demoNumber > 0 &&
        (width > DemoCameraSource::kLargest.width() ||
         height > DemoCameraSource::kLargest.height())) {
        return false;
    }
    if (!Connected()) {
        requestedSize_ = size;
        return true;
    }
    if (IsCapturing()) {
        return size == source_->size();
    }
    // Reopen at the new size; a device that refuses it goes back to the old one.
    stopWorker();
    QString reason;
    std::unique_ptr<VideoSource> reopened = openSource(size, reason);
    const bool taken = reopened && reopened->size() == size;
    if (reopened) {
        source_ = std::move(reopened);
    } else {
        source_.reset();
        source_ = openSource(requestedSize_, reason);
    }
    if (!source_) {
        if (view_) {
            view_->presentFrame(QImage());
        }
        return false;
    }
    if (taken) {
        requestedSize_ = size;
    }
    startWorker();
    return taken;
}

QSize FfmpegCapture::GetVideoSize() const {
    return source_ ? source_->size() : QSize(0, 0);
}

double FfmpegCapture::GetFrameRate() const {
    return source_ ? source_->frameRate() : 0.0;
}

int FfmpegCapture::CompressorCount() const {
    return captureCompressorCount();
}

QString FfmpegCapture::CompressorName(int n) const {
    return captureCompressorName(n);
}

int FfmpegCapture::ProfileCount() const {
    return captureProfileCount();
}

QString FfmpegCapture::ProfileName(int n) const {
    return captureProfileName(n);
}

MediaError FfmpegCapture::StartCapture() {
    if (isWmvFile(file_)) {
        EncoderOptions options;
        options.bitRate = captureProfileBitRate(profile_);
        return startRecording(VideoCodec::Wmv2, options);
    }
    const VideoCodec codec = captureCompressorCodec(compressor_);
    return startRecording(codec, captureEncoderOptions(codec, codecSettings_));
}

MediaError FfmpegCapture::StartCaptureUncompressed() {
    return startRecording(VideoCodec::RawBgr, {});
}

MediaError FfmpegCapture::startRecording(VideoCodec codec, const EncoderOptions& options) {
    if (!Connected()) {
        return {media_error::NotConnected, QStringLiteral("The camera is not connected")};
    }
    if (file_.isEmpty() || IsCapturing()) {
        return {media_error::Busy, file_.isEmpty() ? QStringLiteral("No file to record to")
                                                   : QStringLiteral("The camera is recording")};
    }
    VideoFileSettings settings;
    settings.path = file_;
    // 4:2:0 encoders want even sides; an odd line or column is scaled away.
    settings.width = source_->size().width() & ~1;
    settings.height = source_->size().height() & ~1;
    settings.frameRate = av_d2q(source_->frameRate(), 100000);
    settings.codec = codec;
    settings.bitRate = options.bitRate;
    settings.quality = options.quality;
    settings.keyFrameInterval = options.keyFrameInterval;
    // One thread each keeps four cameras fair on a small machine; large pictures take more.
    settings.threads = settings.width * settings.height > 1280 * 720 ? 0 : 1;

    MediaError error;
    const std::uint64_t recording = ++recordings_;
    // The recorder calls back on its encoder thread; the report is made on ours.
    std::shared_ptr<CaptureRecorder> recorder = CaptureRecorder::start(
        settings,
        [this, recording](const MediaError& failure) {
            QMetaObject::invokeMethod(
                this, [this, failure, recording] { recordingFailed(failure, recording); },
                Qt::QueuedConnection);
        },
        error);
    if (!recorder) {
        return error;
    }
    failureReported_ = false;
    std::lock_guard lock(recorderMutex_);
    recorder_ = std::move(recorder);
    return MediaError::none();
}

void FfmpegCapture::PauseCapture() {
    if (recorder_) {
        recorder_->pause();
    }
}

void FfmpegCapture::ResumeCapture() {
    if (recorder_) {
        recorder_->resume();
    }
}

void FfmpegCapture::StopCapture() {
    if (recorder_) {
        recorder_->stop();
    }
}

bool FfmpegCapture::IsCapturing() const {
    return recorder_ && recorder_->isRecording();
}

CaptureStats FfmpegCapture::GetCaptureStats() const {
    return recorder_ ? recorder_->stats() : CaptureStats{};
}

QByteArray FfmpegCapture::FrameBytes() const {
    QImage newest;
    {
        std::lock_guard lock(newestMutex_);
        newest = newest_;
    }
    return liveFrameBytes(newest);
}

void FfmpegCapture::SetBitmapOverlay(const QImage& overlay) {
    if (view_) {
        view_->overlay().setBitmap(overlay);
        view_->overlayChanged();
    }
}

void FfmpegCapture::sourceLost(const QString& reason) {
    const bool wasRecording = IsCapturing();
    const QString file = recorder_ ? recorder_->path() : QString();
    SetConnected(false);
    if (wasRecording) {
        reportFailure({media_error::DeviceUnavailable,
                       QStringLiteral("%1. The recording up to that moment is kept in %2.")
                           .arg(reason, fileNameOf(file))});
    }
}

void FfmpegCapture::recordingFailed(const MediaError& error, std::uint64_t recording) {
    if (recording != recordings_ || !recorder_) {
        return; // a report from an earlier recording
    }
    recorder_->stop();
    reportFailure(
        {error.number, QStringLiteral("Recording %1 stopped: %2. What was recorded is kept.")
                           .arg(fileNameOf(recorder_->path()), error.text)});
}

void FfmpegCapture::reportFailure(const MediaError& error) {
    if (failureReported_) {
        return;
    }
    failureReported_ = true;
    emit captureFailed(error);
}

} // namespace ravelcue::media::ffmpeg
