#include "ShotMicrophone.h"

#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include <QFile>

namespace ravelcue::test {

namespace {

constexpr int kRate = 44100;

void putWord(QByteArray& bytes, quint32 value, int size) {
    for (int i = 0; i < size; ++i) {
        bytes.append(static_cast<char>((value >> (8 * i)) & 0xFF));
    }
}

QByteArray waveFile(const std::vector<qint16>& frames) {
    const auto dataBytes = static_cast<quint32>(frames.size() * 2);
    QByteArray bytes("RIFF");
    putWord(bytes, 36 + dataBytes, 4);
    bytes.append("WAVEfmt ");
    putWord(bytes, 16, 4);
    putWord(bytes, 1, 2); // PCM
    putWord(bytes, 2, 2); // stereo
    putWord(bytes, kRate, 4);
    putWord(bytes, kRate * 4, 4);
    putWord(bytes, 4, 2);
    putWord(bytes, 16, 2);
    bytes.append("data");
    putWord(bytes, dataBytes, 4);
    bytes.append(reinterpret_cast<const char*>(frames.data()), static_cast<qsizetype>(dataBytes));
    return bytes;
}

// A sound that starts at its loudest positive sample and dies away.
void addHit(std::vector<qint16>& words, int frame, int peak, int length) {
    for (int f = 0; f < length && 2 * (frame + f) + 1 < static_cast<int>(words.size()); ++f) {
        const double level = peak * std::exp(-4.0 * f / length) * (f % 2 == 0 ? 1 : -1);
        for (int c = 0; c < 2; ++c) {
            words[static_cast<size_t>(2 * (frame + f) + c)] = static_cast<qint16>(level);
        }
    }
}

} // namespace

int ShotMicrophone::crashFrames(double speedMph) {
    const double inchesPerSecond = speedMph * 5280.0 * 12.0 / 3600.0;
    return static_cast<int>(std::lround(45.75 / inchesPerSecond * kRate));
}

bool ShotMicrophone::StartCapture() {
    started_ = ToneBus::Clock::now();
    capturing_ = true;
    ++captures_;
    return true;
}

void ShotMicrophone::StopCapture() {
    if (!capturing_) {
        return;
    }
    capturing_ = false;
    const auto stopped = ToneBus::Clock::now();
    const double heardSeconds = std::chrono::duration<double>(stopped - started_).count();
    const bool shot = speedMph_ > 0;
    const int clickFrame = static_cast<int>(kClickSeconds * kRate);
    const int crashFrame = shot ? clickFrame + crashFrames(speedMph_) : 0;
    const int frames = std::max(static_cast<int>(heardSeconds * kRate), crashFrame + kRate / 2);

    std::vector<qint16> words(static_cast<size_t>(frames) * 2);
    std::mt19937 random(7);
    std::uniform_int_distribution<int> noise(-160, 160);
    for (auto& word : words) {
        word = static_cast<qint16>(noise(random));
    }
    for (const ToneBus::Tone& tone : tones_.tonesDuring(started_, stopped)) {
        const double from = std::chrono::duration<double>(tone.start - started_).count() * kRate;
        const double length = std::chrono::duration<double>(tone.duration).count() * kRate;
        for (int f = std::max(0, static_cast<int>(std::ceil(from)));
             f < std::min<double>(frames, from + length); ++f) {
            const double t = (f - from) / kRate;
            const auto level =
                static_cast<qint16>(12000 * std::sin(2 * std::numbers::pi * tone.frequencyHz * t));
            words[static_cast<size_t>(2 * f)] = level;
            words[static_cast<size_t>(2 * f + 1)] = level;
        }
    }
    if (shot) {
        addHit(words, clickFrame, 23000, 200);
        addHit(words, crashFrame, 28000, 2000);
    }

    QFile file(file_);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(waveFile(words));
    }
}

} // namespace ravelcue::test
