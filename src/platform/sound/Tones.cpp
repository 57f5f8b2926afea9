#include "Tones.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

#include <QFile>

namespace ravelcue::sound {

namespace {

template <typename T>
void put(char*& out, T value) {
    std::memcpy(out, &value, sizeof value);
    out += sizeof value;
}

quint32 littleEndian32(const char* p) {
    const auto* u = reinterpret_cast<const unsigned char*>(p);
    return static_cast<quint32>(u[0]) | (static_cast<quint32>(u[1]) << 8) |
           (static_cast<quint32>(u[2]) << 16) | (static_cast<quint32>(u[3]) << 24);
}

quint16 littleEndian16(const char* p) {
    const auto* u = reinterpret_cast<const unsigned char*>(p);
    return static_cast<quint16>(u[0] | (u[1] << 8));
}

} // namespace

QByteArray ToneSamples(const QAudioFormat& format, double frequencyHz, int milliseconds) {
    const int rate = format.sampleRate();
    const int channels = format.channelCount();
    const int bytesPerSample = format.bytesPerSample();
    if (rate <= 0 || channels <= 0 || bytesPerSample <= 0 || milliseconds <= 0) {
        return {};
    }
    const qsizetype frames = static_cast<qsizetype>(rate) * milliseconds / 1000;
    const qsizetype fadeFrames = std::max<qsizetype>(1, rate * 5 / 1000);
    QByteArray data(frames * channels * bytesPerSample, Qt::Uninitialized);
    char* out = data.data();
    for (qsizetype f = 0; f < frames; ++f) {
        const double fromEdge = static_cast<double>(std::min(f, frames - 1 - f));
        const double fade = std::min(1.0, fromEdge / static_cast<double>(fadeFrames));
        const double value = 0.5 * fade *
                             std::sin(2.0 * std::numbers::pi * frequencyHz *
                                      static_cast<double>(f) / static_cast<double>(rate));
        for (int c = 0; c < channels; ++c) {
            switch (format.sampleFormat()) {
            case QAudioFormat::UInt8:
                put(out, static_cast<quint8>(std::lround(128.0 + value * 127.0)));
                break;
            case QAudioFormat::Int16:
                put(out, static_cast<qint16>(std::lround(value * 32767.0)));
                break;
            case QAudioFormat::Int32:
                put(out, static_cast<qint32>(std::lround(value * 2147483647.0)));
                break;
            case QAudioFormat::Float:
                put(out, static_cast<float>(value));
                break;
            default:
                return {};
            }
        }
    }
    return data;
}

std::optional<WaveSound> ReadWaveFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const QByteArray bytes = file.readAll();
    if (bytes.size() < 12 || !bytes.startsWith("RIFF") || bytes.mid(8, 4) != "WAVE") {
        return std::nullopt;
    }
    WaveSound sound;
    bool haveFormat = false;
    qsizetype at = 12;
    while (at + 8 <= bytes.size()) {
        const QByteArray id = bytes.mid(at, 4);
        const qsizetype size = littleEndian32(bytes.constData() + at + 4);
        const qsizetype body = at + 8;
        const qsizetype available = std::min<qsizetype>(size, bytes.size() - body);
        if (id == "fmt " && available >= 16) {
            const char* p = bytes.constData() + body;
            quint16 encoding = littleEndian16(p);
            if (encoding == 0xFFFE && available >= 26) {
                encoding = littleEndian16(p + 24); // the sub-format of an extensible header
            }
            const int channels = littleEndian16(p + 2);
            const int rate = static_cast<int>(littleEndian32(p + 4));
            const int bits = littleEndian16(p + 14);
            QAudioFormat::SampleFormat sampleFormat = QAudioFormat::Unknown;
            if (encoding == 1 && bits == 8) {
                sampleFormat = QAudioFormat::UInt8;
            } else if (encoding == 1 && bits == 16) {
                sampleFormat = QAudioFormat::Int16;
            } else if (encoding == 1 && bits == 32) {
                sampleFormat = QAudioFormat::Int32;
            } else if (encoding == 3 && bits == 32) {
                sampleFormat = QAudioFormat::Float;
            }
            if (sampleFormat == QAudioFormat::Unknown || channels <= 0 || rate <= 0) {
                return std::nullopt;
            }
            sound.format.setSampleFormat(sampleFormat);
            sound.format.setChannelCount(channels);
            sound.format.setSampleRate(rate);
            haveFormat = true;
        } else if (id == "data" && haveFormat) {
            const qsizetype frameBytes = sound.format.bytesPerFrame();
            sound.samples = bytes.mid(body, available - available % frameBytes);
            return sound;
        }
        at = body + size + (size % 2); // chunks are padded to an even length
    }
    return std::nullopt;
}

} // namespace ravelcue::sound
