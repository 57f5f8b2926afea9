#pragma once

#include "platform/media/AudioInstance.h"
#include "platform/media/CaptureInstance.h"
#include "platform/media/MediaEngine.h"
#include "platform/media/PlayerInstance.h"
#include "platform/media/RecompressInstance.h"
#include "platform/media/demo/DemoMicrophone.h"
#include "support/RecordingEngine.h"

#include <chrono>
#include <cstdint>
#include <optional>

namespace ravelcue::test {

// A microphone for whole-window tests that needs no time to pass: when the capture stops it
// writes a 16-bit stereo WAV of the demo microphone's sound for its seed, the room noise and the
// first break (media::demoBreak(seed, 0)), long enough for the crash to die away however short
// the capture was. Without a seed it hears the room only.
class ShotMicrophone final : public media::AudioInstance {
public:
    explicit ShotMicrophone(std::optional<std::uint64_t> seed)
        : seed_(seed) {}

    void SetAudioDevice(int index) override { device_ = index; }
    int AudioDevice() const override { return device_; }
    bool SetConnected(bool connected) override { return connected_ = connected; }
    bool Connected() const override { return connected_; }
    void SetCaptureFile(const QString& path) override { file_ = path; }
    QString CaptureFile() const override { return file_; }
    media::MediaError StartCapture() override;
    // Opening the file fails from now on, as in a read-only data folder; what is there stays.
    void refuseWrites(bool refuse) { refuseWrites_ = refuse; }
    void StopCapture() override;
    bool IsCapturing() const override { return capturing_; }
    int AudioLevel() const override { return 0; }

    int captures() const { return captures_; }

private:
    std::optional<std::uint64_t> seed_;
    int device_ = 0;
    bool connected_ = false;
    bool capturing_ = false;
    bool refuseWrites_ = false;
    int captures_ = 0;
    QString file_;
    std::chrono::steady_clock::time_point started_;
};

// The RecordingEngine's cameras and players, with a ShotMicrophone.
class ShotEngine final : public media::MediaEngine {
public:
    explicit ShotEngine(std::optional<std::uint64_t> seed)
        : seed_(seed) {}

    media::DeviceCatalog& devices() override { return recorder_.devices(); }
    std::unique_ptr<media::CaptureInstance> createCapture(int i) override {
        return recorder_.createCapture(i);
    }
    std::unique_ptr<media::PlayerInstance> createPlayer(int i) override {
        return recorder_.createPlayer(i);
    }
    std::unique_ptr<media::RecompressInstance> createRecompress(int i) override {
        return recorder_.createRecompress(i);
    }
    std::unique_ptr<media::AudioInstance> createAudio() override {
        return std::make_unique<ShotMicrophone>(seed_);
    }

private:
    RecordingEngine recorder_;
    std::optional<std::uint64_t> seed_;
};

} // namespace ravelcue::test
