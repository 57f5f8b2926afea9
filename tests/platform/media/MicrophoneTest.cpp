#include "MediaEngineTestSupport.h"
#include "platform/media/AudioInstance.h"
#include "platform/media/demo/DemoMicrophone.h"
#include "support/TempFolder.h"

#include <csignal>
#include <sys/resource.h>

#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <QtEndian>

#include <gtest/gtest.h>

using namespace ravelcue;
using namespace ravelcue::media;
using ravelcue::test::TempFolder;
using ravelcue::test::TestEngine;

namespace {

constexpr int kRate = 44100;

// The file as the break speed analysis reads it: 16-bit words from byte 0, header included.
std::vector<std::int16_t> wordsOf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray bytes = file.readAll();
    std::vector<std::int16_t> words(size_t(bytes.size() / 2));
    for (size_t i = 0; i < words.size(); ++i) {
        words[i] = qFromLittleEndian<std::int16_t>(bytes.constData() + i * 2);
    }
    return words;
}

std::uint32_t le32(const QByteArray& bytes, int at) {
    return qFromLittleEndian<std::uint32_t>(bytes.constData() + at);
}

std::uint16_t le16(const QByteArray& bytes, int at) {
    return qFromLittleEndian<std::uint16_t>(bytes.constData() + at);
}

void expectPlainWavHeader(const QString& path) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    ASSERT_GE(bytes.size(), 44);
    EXPECT_EQ(bytes.left(4), "RIFF");
    EXPECT_EQ(le32(bytes, 4), std::uint32_t(bytes.size() - 8));
    EXPECT_EQ(bytes.mid(8, 8), "WAVEfmt ");
    EXPECT_EQ(le32(bytes, 16), 16u);
    EXPECT_EQ(le16(bytes, 20), 1u); // PCM
    EXPECT_EQ(le16(bytes, 22), 2u);
    EXPECT_EQ(le32(bytes, 24), 44100u);
    EXPECT_EQ(le32(bytes, 28), 176400u);
    EXPECT_EQ(le16(bytes, 32), 4u);
    EXPECT_EQ(le16(bytes, 34), 16u);
    EXPECT_EQ(bytes.mid(36, 4), "data");
    EXPECT_EQ(le32(bytes, 40), std::uint32_t(bytes.size() - 44));
    EXPECT_EQ((bytes.size() - 44) % 4, 0);
}

struct Peaks {
    long first = 0;
    long second = 0;
};

// The automatic detection: left channel only, positive samples, from word 1000 on, the first
// word over the threshold, then the first one after a dead time of 5100 words.
Peaks detectPeaks(const std::vector<std::int16_t>& words, int thresholdPercent) {
    int loudest = 0;
    for (size_t i = 1000; i + 1 < words.size(); i += 2) {
        loudest = std::max<int>(loudest, words[i]);
    }
    const double threshold = loudest * thresholdPercent / 100.0;
    Peaks peaks;
    for (size_t i = 1000; i + 1 < words.size(); i += 2) {
        if (words[i] > threshold) {
            peaks.first = long(i);
            break;
        }
    }
    for (size_t i = size_t(peaks.first) + 5100; i + 1 < words.size(); i += 2) {
        if (words[i] > threshold) {
            peaks.second = long(i);
            break;
        }
    }
    return peaks;
}

std::unique_ptr<AudioInstance> demoMicrophone(TestEngine& engine, const QString& file) {
    auto audio = engine.engine->createAudio();
    audio->SetAudioDevice(engine.demoMicrophoneIndex());
    audio->SetConnected(true);
    audio->SetVideoDevice(-1);
    audio->SetCaptureAudio(true);
    audio->SetCaptureFile(file);
    return audio;
}

} // namespace

TEST(Microphone, ADemoRecordingIsAPlainWavWhoseFirstBreakSitsWhereTheScheduleSays) {
    TempFolder folder;
    TestEngine engine(1234);
    const QString path = folder.file("breakspeed.wav");
    auto audio = demoMicrophone(engine, path);
    ASSERT_TRUE(audio->Connected());
    // The engine's first recording draws its breaks from the seed itself.
    const DemoBreak first = demoBreak(1234, 0);
    const double crashSeconds = first.startSeconds + demoBreakDelaySeconds(first.speedMph);

    ASSERT_TRUE(audio->StartCapture());
    EXPECT_TRUE(audio->IsCapturing());
    QTest::qWait(500);
    // Cut off now, the file would read whole: the header is kept current as it grows.
    expectPlainWavHeader(path);
    QTest::qWait(int((crashSeconds + 0.3) * 1000) - 500);
    audio->StopCapture();
    EXPECT_FALSE(audio->IsCapturing());
    expectPlainWavHeader(path);

    const std::vector<std::int16_t> words = wordsOf(path);
    ASSERT_GT(words.size(), size_t((crashSeconds + 0.2) * kRate * 2));
    // The header's 22 words come first; then frame f is words 22 + 2f (left) and 23 + 2f.
    const long click = 22 + 2 * std::lround(first.startSeconds * kRate);
    for (int percent : {30, 50, 70}) {
        SCOPED_TRACE(percent);
        const Peaks peaks = detectPeaks(words, percent);
        EXPECT_NEAR(peaks.first, click, 2);
        ASSERT_GT(peaks.second, peaks.first);
        const double delta = (peaks.second - peaks.first) / 2.0 / kRate;
        EXPECT_NEAR((48.0 - 2.25) / delta * 0.0568, first.speedMph, 0.02);
    }
}

TEST(Microphone, HearsTheProgramsToneAsABlockExactlyItsLength) {
    // A seed whose first break comes after the tone has ended.
    std::uint64_t seed = 1;
    while (demoBreak(seed, 0).startSeconds < 1.4) {
        ++seed;
    }
    TempFolder folder;
    TestEngine engine(seed);
    const QString path = folder.file("tone.wav");
    auto audio = demoMicrophone(engine, path);
    ASSERT_TRUE(audio->StartCapture());
    const auto start = std::chrono::steady_clock::now();
    engine.tones.publish(
        {400.0, start + std::chrono::milliseconds(100), std::chrono::milliseconds(1000)});
    QTest::qWait(1250);
    audio->StopCapture();

    const std::vector<std::int16_t> words = wordsOf(path);
    long firstFrame = -1;
    long lastFrame = -1;
    for (size_t i = 22; i + 1 < words.size(); i += 2) {
        if (std::abs(words[i]) > 1500) {
            const long frame = long(i - 22) / 2;
            firstFrame = firstFrame < 0 ? frame : firstFrame;
            lastFrame = frame;
        }
    }
    ASSERT_GE(firstFrame, 0);
    // 400 cycles: 800 changes of sign within the block.
    int crossings = 0;
    for (long frame = firstFrame + 1; frame <= lastFrame; ++frame) {
        crossings += (words[size_t(22 + 2 * frame)] < 0) != (words[size_t(20 + 2 * frame)] < 0);
    }
    EXPECT_NEAR(double(lastFrame - firstFrame + 1), kRate, 10.0);
    EXPECT_NEAR(double(firstFrame), 0.1 * kRate, 0.01 * kRate);
    EXPECT_NEAR(crossings, 800, 2);
}

TEST(Microphone, TheLevelFollowsWhatItHearsAndOnlyAKnownDeviceConnects) {
    TempFolder folder;
    TestEngine engine;
    auto audio = engine.engine->createAudio();
    audio->SetAudioDevice(engine.demoMicrophoneIndex() + 1);
    EXPECT_FALSE(audio->SetConnected(true));
    EXPECT_FALSE(audio->Connected());
    audio->SetCaptureFile(folder.file("never.wav"));
    EXPECT_FALSE(audio->StartCapture());
    EXPECT_FALSE(QFile::exists(folder.file("never.wav")));

    audio->SetAudioDevice(engine.demoMicrophoneIndex());
    ASSERT_TRUE(audio->SetConnected(true));
    audio->SetPreview(true);
    QTest::qWait(400);
    EXPECT_LE(audio->AudioLevel(), 2);
    engine.tones.publish(
        {1000.0, std::chrono::steady_clock::now(), std::chrono::milliseconds(600)});
    QTest::qWait(300);
    EXPECT_GE(audio->AudioLevel(), 30);
    EXPECT_LE(audio->AudioLevel(), 45);
    QTest::qWait(800);
    EXPECT_LE(audio->AudioLevel(), 2);

    // Disconnecting ends a recording with a whole file.
    ASSERT_TRUE(audio->StartCapture());
    QTest::qWait(200);
    EXPECT_TRUE(audio->SetConnected(false));
    EXPECT_FALSE(audio->IsCapturing());
    expectPlainWavHeader(folder.file("never.wav"));
    EXPECT_EQ(audio->AudioLevel(), 0);
}

TEST(Microphone, AFullDiskEndsTheRecordingOnceWithAReadableFile) {
    TempFolder folder;
    TestEngine engine;
    const QString path = folder.file("full.wav");
    auto audio = demoMicrophone(engine, path);
    QSignalSpy failed(audio.get(), &AudioInstance::captureFailed);
    // A limit on the size of the files this process writes stands in for a small disk.
    constexpr rlim_t kLimit = 100'002; // not a whole number of frames
    rlimit saved{};
    getrlimit(RLIMIT_FSIZE, &saved);
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = saved;
    small.rlim_cur = kLimit;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool started = audio->StartCapture();
    if (started) {
        (void)QTest::qWaitFor([&] { return failed.count() > 0; }, 5000);
        QTest::qWait(100);
    }
    audio->StopCapture();
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previousHandler);
    ASSERT_TRUE(started);

    EXPECT_EQ(failed.count(), 1);
    EXPECT_FALSE(audio->IsCapturing());
    expectPlainWavHeader(path);
    EXPECT_GT(QFile(path).size(), 90'000);
}
