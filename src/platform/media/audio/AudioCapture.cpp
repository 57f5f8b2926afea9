#include "AudioCapture.h"

#include <algorithm>
#include <cstdlib>

#include <QFileInfo>
#include <QMetaObject>

namespace ravelcue::media {

namespace {
constexpr auto kLevelWindow = std::chrono::milliseconds(250);
}

AudioCapture::AudioCapture(MicrophoneChooser chooseInput)
    : chooseInput_(std::move(chooseInput)) {}

AudioCapture::~AudioCapture() {
    SetConnected(false);
}

bool AudioCapture::SetConnected(bool connected) {
    if (!connected) {
        StopCapture();
        if (input_) {
            input_->stop();
            input_.reset();
        }
        std::lock_guard lock(mutex_);
        peaks_.clear();
        return true;
    }
    if (input_) {
        return true;
    }
    std::unique_ptr<MicrophoneInput> input = chooseInput_(device_);
    if (!input) {
        return false;
    }
    // The input reports from its own code; it is let go of once that has returned.
    input->setOnLost([this, lost = input.get()] {
        QMetaObject::invokeMethod(
            this,
            [this, lost] {
                if (input_.get() == lost) {
                    inputLost();
                }
            },
            Qt::QueuedConnection);
    });
    const bool started = input->start([this](std::int64_t firstFrame, const std::int16_t* samples,
                                             int frames) { receive(firstFrame, samples, frames); });
    if (!started) {
        return false;
    }
    input_ = std::move(input);
    return true;
}

MediaError AudioCapture::StartCapture() {
    if (!input_) {
        return {media_error::NotConnected, QStringLiteral("The microphone is not connected")};
    }
    if (file_.isEmpty()) {
        return {media_error::WriteFailed, QStringLiteral("No file to record to")};
    }
    StopCapture();
    auto wav = std::make_unique<WavFileWriter>();
    QString reason;
    if (!wav->open(file_, reason)) {
        return {media_error::WriteFailed, QStringLiteral("%1: %2").arg(file_, reason)};
    }
    // The input calls receive() holding its own lock, so it is never called into while ours is
    // held.
    const std::int64_t from = input_->frameNow();
    {
        std::lock_guard lock(mutex_);
        wav_ = std::move(wav);
        recordFrom_ = from;
    }
    input_->recordingStarted(from);
    return MediaError::none();
}

void AudioCapture::StopCapture() {
    if (!input_) {
        return;
    }
    input_->catchUp();
    std::unique_ptr<WavFileWriter> wav;
    {
        std::lock_guard lock(mutex_);
        wav = std::move(wav_);
    }
    if (wav) {
        wav->close();
        input_->recordingStopped();
    }
}

bool AudioCapture::IsCapturing() const {
    std::lock_guard lock(mutex_);
    return wav_ != nullptr;
}

int AudioCapture::AudioLevel() const {
    const auto horizon = std::chrono::steady_clock::now() - kLevelWindow;
    std::lock_guard lock(mutex_);
    int level = 0;
    for (const Peak& peak : peaks_) {
        if (peak.at >= horizon) {
            level = std::max(level, peak.level);
        }
    }
    return level;
}

void AudioCapture::inputLost() {
    const bool wasRecording = IsCapturing();
    SetConnected(false);
    if (wasRecording) {
        emit captureFailed(QStringLiteral("The microphone stopped sending sound. The recording up "
                                          "to that moment is kept in %1.")
                               .arg(QFileInfo(file_).fileName()));
    }
}

void AudioCapture::receive(std::int64_t firstFrame, const std::int16_t* samples, int frames) {
    int loudest = 0;
    for (int i = 0; i < frames * 2; ++i) {
        loudest = std::max(loudest, std::abs(int(samples[i])));
    }
    const auto now = std::chrono::steady_clock::now();
    std::lock_guard lock(mutex_);
    peaks_.push_back({now, std::min(100, loudest * 100 / 32767)});
    while (!peaks_.empty() && peaks_.front().at < now - kLevelWindow) {
        peaks_.pop_front();
    }
    if (!wav_) {
        return;
    }
    const std::int64_t skip = std::clamp<std::int64_t>(recordFrom_ - firstFrame, 0, frames);
    if (skip < frames && !wav_->append(samples + skip * 2, frames - skip)) {
        const QString name = QFileInfo(file_).fileName();
        wav_.reset();
        QMetaObject::invokeMethod(
            this,
            [this, name] {
                if (input_) {
                    input_->recordingStopped();
                }
                emit captureFailed(
                    QStringLiteral("Recording %1 stopped: the disk is full or the file cannot be "
                                   "written. What was recorded is kept.")
                        .arg(name));
            },
            Qt::QueuedConnection);
    }
}

} // namespace ravelcue::media
