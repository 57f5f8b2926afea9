#pragma once

#include "../AudioInstance.h"
#include "MicrophoneInput.h"
#include "WavFileWriter.h"

#include <chrono>
#include <deque>
#include <memory>
#include <mutex>

namespace ravelcue::media {

namespace ffmpeg {
struct EngineContext;
}

// The microphone instance: a running input (a sound card or the demo microphone) whose frames
// feed the level meter and, while recording, the WAV file. UI thread only, as AudioInstance
// says; the input delivers on its own thread.
class AudioCapture final : public AudioInstance {
    Q_OBJECT
public:
    explicit AudioCapture(std::shared_ptr<ffmpeg::EngineContext> engine);
    ~AudioCapture() override;

    void SetAudioDevice(int deviceIndex) override { device_ = deviceIndex; }
    int AudioDevice() const override { return device_; }
    bool SetConnected(bool connected) override;
    bool Connected() const override { return input_ != nullptr; }
    void SetVideoDevice(int deviceIndex) override { videoDevice_ = deviceIndex; }
    void SetCaptureAudio(bool captureAudio) override { captureAudio_ = captureAudio; }
    void SetCaptureFile(const QString& path) override { file_ = path; }
    QString CaptureFile() const override { return file_; }
    // Starting while a recording runs starts it afresh.
    bool StartCapture() override;
    void StopCapture() override;
    bool IsCapturing() const override;
    void SetPreview(bool preview) override { preview_ = preview; }
    int AudioLevel() const override;

private:
    struct Peak {
        std::chrono::steady_clock::time_point at;
        int level;
    };

    void receive(std::int64_t firstFrame, const std::int16_t* samples, int frames);

    std::shared_ptr<ffmpeg::EngineContext> engine_;
    int device_ = 0;
    int videoDevice_ = -1;
    bool captureAudio_ = false;
    bool preview_ = false;
    QString file_;
    std::unique_ptr<MicrophoneInput> input_;

    mutable std::mutex mutex_;
    std::unique_ptr<WavFileWriter> wav_; // while recording
    std::int64_t recordFrom_ = 0;
    std::deque<Peak> peaks_;
};

} // namespace ravelcue::media
