#pragma once

#include <optional>

#include <QAudioFormat>
#include <QByteArray>
#include <QString>

namespace ravelcue::sound {

// A sine tone of frequencyHz lasting milliseconds, at half of full scale, in the given format
// (8-bit unsigned, 16- or 32-bit signed, or float; every channel alike). Its first and last
// 5 ms fade, so that it starts and stops without a click.
QByteArray ToneSamples(const QAudioFormat& format, double frequencyHz, int milliseconds);

// The sound of a WAV file: PCM of 8, 16 or 32 bits, or 32-bit float.
struct WaveSound {
    QAudioFormat format;
    QByteArray samples;
};
std::optional<WaveSound> ReadWaveFile(const QString& path);

} // namespace ravelcue::sound
