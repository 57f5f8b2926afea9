#pragma once

#include "core/ToneBus.h"
#include "platform/media/AudioInstance.h"
#include "platform/media/CaptureInstance.h"
#include "platform/media/MediaEngine.h"
#include "platform/media/PlayerInstance.h"
#include "platform/media/RecompressInstance.h"
#include "support/RecordingEngine.h"

#include <chrono>

namespace ravelcue::test {

// A microphone for whole-window tests. A recording holds quiet room noise, one break (the click
// of the tip, then the crash into the rack after the time a ball at speedMph takes over 45.75
// inches) and every tone the program published meanwhile, as the demo microphone does; it is
// written as a 16-bit stereo WAV when the capture stops, at least long enough for the break.
// A speed of 0 plays no break.
class ShotMicrophone final : public media::AudioInstance {
public:
    ShotMicrophone(const ToneBus& tones, double speedMph)
        : tones_(tones)
        , speedMph_(speedMph) {}

    static constexpr double kClickSeconds = 0.5;
    // The crash's distance from the click in frames, as written.
    static int crashFrames(double speedMph);

    void SetAudioDevice(int index) override { device_ = index; }
    int AudioDevice() const override { return device_; }
    bool SetConnected(bool connected) override { return connected_ = connected; }
    bool Connected() const override { return connected_; }
    void SetVideoDevice(int) override {}
    void SetCaptureAudio(bool) override {}
    void SetCaptureFile(const QString& path) override { file_ = path; }
    QString CaptureFile() const override { return file_; }
    bool StartCapture() override;
    void StopCapture() override;
    bool IsCapturing() const override { return capturing_; }
    void SetPreview(bool) override {}
    int AudioLevel() const override { return 0; }

    int captures() const { return captures_; }

private:
    const ToneBus& tones_;
    double speedMph_;
    int device_ = 0;
    bool connected_ = false;
    bool capturing_ = false;
    int captures_ = 0;
    QString file_;
    ToneBus::Clock::time_point started_;
};

// The RecordingEngine's cameras and players, with a ShotMicrophone that hears the tones of the
// bus given to listenTo before the window is built.
class ShotEngine final : public media::MediaEngine {
public:
    explicit ShotEngine(double speedMph)
        : speedMph_(speedMph) {}

    void listenTo(const ToneBus& tones) { tones_ = &tones; }

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
        return std::make_unique<ShotMicrophone>(*tones_, speedMph_);
    }

private:
    RecordingEngine recorder_;
    const ToneBus* tones_ = nullptr;
    double speedMph_;
};

} // namespace ravelcue::test
