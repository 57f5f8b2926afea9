#include "QtMicrophoneInput.h"

#include <vector>

#include <QAudioSource>
#include <QtEndian>

namespace ravelcue::media {

namespace {
constexpr int kFrameBytes = 4;
}

QtMicrophoneInput::QtMicrophoneInput(const QAudioDevice& device)
    : device_(device) {}

QtMicrophoneInput::~QtMicrophoneInput() {
    stop();
}

bool QtMicrophoneInput::start(Sink sink) {
    stop();
    QAudioFormat format;
    format.setSampleRate(44100);
    format.setChannelCount(2);
    format.setSampleFormat(QAudioFormat::Int16);
    if (device_.isNull() || !device_.isFormatSupported(format)) {
        return false;
    }
    source_ = std::make_unique<QAudioSource>(device_, format);
    sink_ = std::move(sink);
    delivered_ = 0;
    partial_.clear();
    stream_ = source_->start();
    if (stream_ == nullptr || source_->error() != QAudio::NoError) {
        stop();
        return false;
    }
    QObject::connect(stream_, &QIODevice::readyRead, stream_, [this] { readAvailable(); });
    return true;
}

void QtMicrophoneInput::stop() {
    if (source_) {
        source_->stop();
        source_.reset();
    }
    sink_ = nullptr;
}

void QtMicrophoneInput::readAvailable() {
    if (!stream_ || !sink_) {
        return;
    }
    partial_ += stream_->readAll();
    const int frames = static_cast<int>(partial_.size() / kFrameBytes);
    if (frames == 0) {
        return;
    }
    std::vector<std::int16_t> samples(size_t(frames) * 2);
    for (size_t i = 0; i < samples.size(); ++i) {
        samples[i] = qFromLittleEndian<std::int16_t>(partial_.constData() + i * 2);
    }
    partial_.remove(0, qsizetype(frames) * kFrameBytes);
    sink_(delivered_, samples.data(), frames);
    delivered_ += frames;
}

} // namespace ravelcue::media
