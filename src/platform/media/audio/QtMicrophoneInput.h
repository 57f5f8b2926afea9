#pragma once

#include "MicrophoneInput.h"

#include <memory>

#include <QAudioDevice>
#include <QPointer>

class QAudioSource;
class QIODevice;
class QMediaDevices;
class QTimer;

namespace ravelcue::media {

// A sound card's input through Qt Multimedia (PulseAudio or ALSA on Linux), asked for 44,100
// frames a second, 16-bit, stereo. Runs on the UI thread's event loop; the sink is called there.
// The device counts as lost when the sound system drops it from its list of inputs or stops the
// stream with an error.
class QtMicrophoneInput final : public MicrophoneInput {
public:
    explicit QtMicrophoneInput(const QAudioDevice& device);
    ~QtMicrophoneInput() override;

    bool start(Sink sink) override;
    void stop() override;
    std::int64_t frameNow() const override { return delivered_; }

private:
    void readAvailable();
    void checkStillThere();
    void lose();

    QAudioDevice device_;
    std::unique_ptr<QMediaDevices> devices_; // announces inputs coming and going
    std::unique_ptr<QTimer> checkTimer_;     // looks for the device while started
    std::unique_ptr<QAudioSource> source_;
    QPointer<QIODevice> stream_;
    Sink sink_;
    std::int64_t delivered_ = 0;
    QByteArray partial_; // bytes of a frame not yet whole
};

} // namespace ravelcue::media
