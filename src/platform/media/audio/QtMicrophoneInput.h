#pragma once

#include "MicrophoneInput.h"

#include <memory>

#include <QAudioDevice>
#include <QPointer>

class QAudioSource;
class QIODevice;

namespace ravelcue::media {

// A sound card's input through Qt Multimedia (PulseAudio or ALSA on Linux), asked for 44,100
// frames a second, 16-bit, stereo. Runs on the UI thread's event loop; the sink is called there.
class QtMicrophoneInput final : public MicrophoneInput {
public:
    explicit QtMicrophoneInput(const QAudioDevice& device);
    ~QtMicrophoneInput() override;

    bool start(Sink sink) override;
    void stop() override;
    std::int64_t frameNow() const override { return delivered_; }

private:
    void readAvailable();

    QAudioDevice device_;
    std::unique_ptr<QAudioSource> source_;
    QPointer<QIODevice> stream_;
    Sink sink_;
    std::int64_t delivered_ = 0;
    QByteArray partial_; // bytes of a frame not yet whole
};

} // namespace ravelcue::media
