#include "SoundOutput.h"

#include "Tones.h"

#include <chrono>
#include <memory>
#include <thread>

#include <QAudioDevice>
#include <QAudioSink>
#include <QBuffer>
#include <QMediaDevices>
#include <QPointer>
#include <QTimer>

namespace ravelcue::sound {

// Owns the sinks, on the sound thread: QAudioSink wants to be made, fed and ended on one thread
// with an event loop, and the UI thread is asleep while a beep lasts.
class SoundWorker : public QObject {
public:
    void playTone(const QAudioDevice& device, double frequencyHz, int milliseconds) {
        QAudioFormat format;
        format.setSampleRate(44100);
        format.setChannelCount(1);
        format.setSampleFormat(QAudioFormat::Int16);
        if (!device.isFormatSupported(format)) {
            format = device.preferredFormat();
        }
        start(device, format, ToneSamples(format, frequencyHz, milliseconds));
    }

    void playWave(const QAudioDevice& device, const WaveSound& sound) {
        if (currentWave_) {
            currentWave_->stop(); // a new command cuts off the one before
        }
        currentWave_ = start(device, sound.format, sound.samples);
    }

    void stopAll() {
        for (QAudioSink* sink : findChildren<QAudioSink*>()) {
            sink->stop();
        }
    }

private:
    // Plays data once; the sink and its buffer go when it has run out, or fails, or at the
    // latest a little after the sound's own length.
    QAudioSink* start(const QAudioDevice& device, const QAudioFormat& format,
                      const QByteArray& data) {
        if (data.isEmpty()) {
            return nullptr;
        }
        auto* sink = new QAudioSink(device, format, this);
        auto* buffer = new QBuffer(sink);
        buffer->setData(data);
        buffer->open(QIODevice::ReadOnly);
        auto finished = std::make_shared<bool>(false);
        auto finish = [sink, finished] {
            if (*finished) {
                return; // stop() reports a state change of its own
            }
            *finished = true;
            sink->stop();
            sink->deleteLater();
        };
        // Idle means the last bytes have gone to the device, not that they have sounded: what
        // the device still holds would be lost by stopping at once.
        connect(sink, &QAudioSink::stateChanged, sink, [sink, finish, format](QAudio::State state) {
            if (state == QAudio::IdleState) {
                const qint64 heldMs = format.durationForBytes(sink->bufferSize()) / 1000;
                QTimer::singleShot(std::chrono::milliseconds(heldMs + 250), sink, finish);
            } else if (state == QAudio::StoppedState && sink->error() != QAudio::NoError) {
                finish();
            }
        });
        const qint64 lengthMs = format.durationForBytes(data.size()) / 1000;
        QTimer::singleShot(std::chrono::milliseconds(lengthMs + 5000), sink, finish);
        sink->start(buffer);
        return sink;
    }

    QPointer<QAudioSink> currentWave_;
};

SoundOutput::SoundOutput(ToneBus& tones)
    : tones_(tones)
    , worker_(new SoundWorker) {
    thread_.setObjectName("Sound");
    worker_->moveToThread(&thread_);
    QObject::connect(&thread_, &QThread::finished, worker_, &QObject::deleteLater);
    thread_.start();
}

SoundOutput::~SoundOutput() {
    QMetaObject::invokeMethod(
        worker_, [worker = worker_] { worker->stopAll(); }, Qt::BlockingQueuedConnection);
    thread_.quit();
    thread_.wait();
}

bool SoundOutput::SoundDeviceExists() const {
    return !QMediaDevices::audioOutputs().isEmpty();
}

void SoundOutput::PlayBeep(int frequency, int milliseconds) {
    if (milliseconds <= 0) {
        return;
    }
    const auto start = ToneBus::Clock::now();
    const std::chrono::milliseconds length(milliseconds);
    tones_.publish({static_cast<double>(frequency), start, length});
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    if (!device.isNull() && frequency > 0) {
        QMetaObject::invokeMethod(
            worker_,
            [worker = worker_, device, frequency, milliseconds] {
                worker->playTone(device, frequency, milliseconds);
            },
            Qt::QueuedConnection);
    }
    // The tone's length on the clock, whatever the device made of it.
    std::this_thread::sleep_until(start + length);
}

bool SoundOutput::PlayWaveFile(const QString& path) {
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    if (device.isNull()) {
        return false;
    }
    std::optional<WaveSound> sound = ReadWaveFile(path);
    if (!sound) {
        return false;
    }
    QMetaObject::invokeMethod(
        worker_,
        [worker = worker_, device, sound = std::move(*sound)] { worker->playWave(device, sound); },
        Qt::QueuedConnection);
    return true;
}

} // namespace ravelcue::sound
