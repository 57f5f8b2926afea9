#pragma once

#include "../AudioInstance.h"
#include "MicrophoneInput.h"
#include "WavFileWriter.h"

#include <chrono>
#include <deque>
#include <memory>
#include <mutex>

namespace ravelcue::media {

// The microphone instance: a running input (a sound card or the demo microphone) whose frames
// feed the level meter and, while recording, the WAV file. UI thread only, as AudioInstance
// says; the input delivers on its own thread.
class AudioCapture final : public AudioInstance {
    Q_OBJECT
public:
    explicit AudioCapture(MicrophoneChooser chooseInput);
    ~AudioCapture() override;

    void SetAudioDevice(int deviceIndex) override { device_ = deviceIndex; }
    int AudioDevice() const override { return device_; }
    bool SetConnected(bool connected) override;
    bool Connected() const override { return input_ != nullptr; }
    void SetCaptureFile(const QString& path) override { file_ = path; }
    QString CaptureFile() const override { return file_; }
    // Starting while a recording runs starts it afresh.
    MediaError StartCapture() override;
    void StopCapture() override;
    bool IsCapturing() const override;
    int AudioLevel() const override;

private:
    struct Peak {
        std::chrono::steady_clock::time_point at;
        int level;
    };

    void receive(std::int64_t firstFrame, const std::int16_t* samples, int frames);
    void inputLost();

    MicrophoneChooser chooseInput_;
    int device_ = 0;
    QString file_;
    std::unique_ptr<MicrophoneInput> input_;

    mutable std::mutex mutex_;
    std::unique_ptr<WavFileWriter> wav_; // while recording
    std::int64_t recordFrom_ = 0;
    std::deque<Peak> peaks_;
};

} // namespace ravelcue::media
