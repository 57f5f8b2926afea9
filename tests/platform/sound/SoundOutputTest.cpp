#include "platform/sound/SoundOutput.h"

#include "platform/sound/Tones.h"
#include "support/MediaFiles.h"
#include "support/TempFolder.h"

#include <cstring>

#include <gtest/gtest.h>

namespace ravelcue::sound {
namespace {

template <typename T>
std::vector<T> Samples(const QByteArray& data) {
    std::vector<T> samples(static_cast<size_t>(data.size()) / sizeof(T));
    std::memcpy(samples.data(), data.constData(), samples.size() * sizeof(T));
    return samples;
}

QAudioFormat Format(int rate, int channels, QAudioFormat::SampleFormat sampleFormat) {
    QAudioFormat format;
    format.setSampleRate(rate);
    format.setChannelCount(channels);
    format.setSampleFormat(sampleFormat);
    return format;
}

TEST(ToneSamples, ASineOfTheFrequencyAndLengthAskedFor) {
    const auto tone =
        Samples<qint16>(ToneSamples(Format(44100, 1, QAudioFormat::Int16), 400, 1000));
    ASSERT_EQ(tone.size(), 44100U);
    int rises = 0;
    for (size_t i = 1; i < tone.size(); ++i) {
        rises += (tone[i - 1] < 0 && tone[i] >= 0) ? 1 : 0;
    }
    EXPECT_NEAR(rises, 400, 1);
    EXPECT_NEAR(*std::max_element(tone.begin(), tone.end()), 16383, 20);
    // It fades in and out, so no click at either end.
    EXPECT_LT(std::abs(tone.front()), 50);
    EXPECT_LT(std::abs(tone.back()), 50);

    // In whatever format the device prefers, every channel alike.
    const auto stereo =
        Samples<float>(ToneSamples(Format(48000, 2, QAudioFormat::Float), 1000, 250));
    ASSERT_EQ(stereo.size(), 2U * 12000U);
    EXPECT_EQ(stereo[1001], stereo[1000]);
    EXPECT_TRUE(ToneSamples(QAudioFormat(), 400, 100).isEmpty());
}

TEST(ReadWaveFile, ReadsWhatOtherProgramsWrite) {
    test::TempFolder folder;
    for (const auto& [codec, format, bytesPerSample] :
         {std::tuple{"pcm_s16le", QAudioFormat::Int16, 2},
          {"pcm_f32le", QAudioFormat::Float, 4},
          {"pcm_u8", QAudioFormat::UInt8, 1}}) {
        SCOPED_TRACE(codec);
        const QString path = folder.file(QString("tone-%1.wav").arg(codec));
        ASSERT_TRUE(test::runFfmpeg({"-f", "lavfi", "-i",
                                     "sine=frequency=440:sample_rate=22050:duration=0.2", "-c:a",
                                     codec, path}));
        const std::optional<WaveSound> sound = ReadWaveFile(path);
        ASSERT_TRUE(sound);
        EXPECT_EQ(sound->format.sampleFormat(), format);
        EXPECT_EQ(sound->format.sampleRate(), 22050);
        EXPECT_EQ(sound->format.channelCount(), 1);
        EXPECT_EQ(sound->samples.size(), 4410 * bytesPerSample);
    }
    EXPECT_FALSE(ReadWaveFile(folder.file("missing.wav")));
}

TEST(SoundOutput, ABeepTakesItsLengthAndIsHeardByTheBus) {
    ToneBus bus;
    SoundOutput sound(bus);
    const auto before = ToneBus::Clock::now();
    sound.PlayBeep(400, 150);
    const auto after = ToneBus::Clock::now();
    EXPECT_GE(after - before, std::chrono::milliseconds(150));

    const std::vector<ToneBus::Tone> heard = bus.tonesDuring(before, after);
    ASSERT_EQ(heard.size(), 1U);
    EXPECT_EQ(heard[0].frequencyHz, 400);
    EXPECT_EQ(heard[0].duration, std::chrono::milliseconds(150));
    EXPECT_GE(heard[0].start, before);

    test::TempFolder folder;
    EXPECT_FALSE(sound.PlayWaveFile(folder.file("missing.wav")));
}

} // namespace
} // namespace ravelcue::sound
