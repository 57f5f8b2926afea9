#include "QtMicrophoneInput.h"

#include <vector>

#include <QAudioSource>
#include <QMediaDevices>
#include <QTimer>
#include <QtEndian>

namespace ravelcue::media {

namespace {
constexpr int kFrameBytes = 4;
constexpr int kCheckIntervalMs = 1000;
} // namespace

QtMicrophoneInput::QtMicrophoneInput(const QAudioDevice& device)
    : device_(device)
    , devices_(std::make_unique<QMediaDevices>())
    , checkTimer_(std::make_unique<QTimer>()) {
    QObject::connect(devices_.get(), &QMediaDevices::audioInputsChanged, devices_.get(),
                     [this] { checkStillThere(); });
    // Not every sound system announces an input that went away (PulseAudio under Qt 6.4 only
    // updates the list), so the list is also looked at while the input runs.
    checkTimer_->setInterval(kCheckIntervalMs);
    QObject::connect(checkTimer_.get(), &QTimer::timeout, devices_.get(),
                     [this] { checkStillThere(); });
}

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
    QObject::connect(
        source_.get(), &QAudioSource::stateChanged, devices_.get(), [this](QAudio::State state) {
            if (state == QAudio::StoppedState && source_ && source_->error() != QAudio::NoError) {
                lose();
            }
        });
    checkTimer_->start();
    return true;
}

void QtMicrophoneInput::stop() {
    checkTimer_->stop();
    if (source_) {
        source_->stop();
        source_.reset();
    }
    sink_ = nullptr;
}

void QtMicrophoneInput::checkStillThere() {
    const QList<QAudioDevice> inputs = QMediaDevices::audioInputs();
    if (source_ && !inputs.contains(device_)) {
        lose();
    }
}

void QtMicrophoneInput::lose() {
    // Not from within the source's own signal: the source is destroyed on the way.
    QMetaObject::invokeMethod(
        devices_.get(),
        [this] {
            if (source_) {
                stop();
                reportLost();
            }
        },
        Qt::QueuedConnection);
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
