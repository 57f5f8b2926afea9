#include "MediaEngineTestSupport.h"
#include "platform/media/AudioInstance.h"
#include "platform/media/demo/DemoMicrophone.h"
#include "support/TempFolder.h"

#include <csignal>

#ifdef __unix__
#include <sys/resource.h>
#endif

#include <QDataStream>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTest>
#include <QtEndian>

#include <gtest/gtest.h>

using namespace ravelcue;
using namespace ravelcue::media;
using namespace std::chrono_literals;
using ravelcue::test::TempFolder;
using ravelcue::test::TestEngine;

namespace {

constexpr int kRate = 44100;

// The file as the break speed analysis reads it: 16-bit words from byte 0, header included. The
// header's 22 words come first; then frame f is words 22 + 2f (left) and 23 + 2f (right).
std::vector<std::int16_t> wordsOf(const QString& path) {
    QFile file(path);
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    std::vector<std::int16_t> words(size_t(bytes.size() / 2));
    for (size_t i = 0; i < words.size(); ++i) {
        words[i] = qFromLittleEndian<std::int16_t>(bytes.constData() + i * 2);
    }
    return words;
}

enum class Recording { Finished, StillGrowing };

// A plain 44-byte header of 44,100 frames a second, 16-bit stereo, whose sizes fit the file. The
// header is read first and the file's length after it: a file still being recorded may grow in
// between, so its header may claim less than is there by then, never more.
void expectPlainWavHeader(const QString& path, Recording recording = Recording::Finished) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.read(44);
    ASSERT_EQ(bytes.size(), 44);
    const qint64 dataOnDisk = QFileInfo(path).size() - 44;
    const auto dataBytes = qFromLittleEndian<quint32>(bytes.constData() + 40);
    if (recording == Recording::Finished) {
        EXPECT_EQ(dataBytes, dataOnDisk);
    } else {
        EXPECT_LE(dataBytes, dataOnDisk);
        EXPECT_GT(dataBytes, 0u);
    }
    QByteArray header;
    QDataStream out(&header, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    out.writeRawData("RIFF", 4);
    out << quint32(dataBytes + 36);
    out.writeRawData("WAVEfmt ", 8);
    out << quint32(16) << quint16(1) << quint16(2) << quint32(44100) << quint32(176400)
        << quint16(4) << quint16(16);
    out.writeRawData("data", 4);
    out << dataBytes;
    EXPECT_EQ(bytes.left(44), header);
    EXPECT_EQ(dataBytes % 4, 0u);
}

std::unique_ptr<AudioInstance> demoMicrophone(TestEngine& engine, const QString& file) {
    auto audio = engine.engine->createAudio();
    audio->SetAudioDevice(engine.demoMicrophoneIndex());
    audio->SetConnected(true);
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
    const double delaySeconds = demoBreakDelaySeconds(first.speedMph);

    ASSERT_TRUE(audio->StartCapture().ok());
    EXPECT_TRUE(audio->IsCapturing());
    QTest::qWait(500);
    // Cut off now, the file would read whole: the header is kept current as it grows.
    expectPlainWavHeader(path, Recording::StillGrowing);
    QTest::qWait(int((first.startSeconds + delaySeconds + 0.3) * 1000) - 500);
    audio->StopCapture();
    EXPECT_FALSE(audio->IsCapturing());
    expectPlainWavHeader(path);

    // The click rises above the noise on its frame, and the crash, the loudest, follows at the
    // delay of the break's speed: the analysis measures the speed played.
    const std::vector<std::int16_t> words = wordsOf(path);
    const long click = 22 + 2 * std::lround(first.startSeconds * kRate);
    const long crash = click + 2 * std::lround(delaySeconds * kRate);
    ASSERT_GT(long(words.size()), crash + kRate / 5);
    long loudest = 22;
    for (long i = 22; i < long(words.size()); i += 2) {
        loudest = words[size_t(i)] > words[size_t(loudest)] ? i : loudest;
    }
    long firstLoud = 22;
    while (words[size_t(firstLoud)] < 0.3 * words[size_t(loudest)]) {
        firstLoud += 2;
    }
    EXPECT_NEAR(firstLoud, click, 2);
    EXPECT_NEAR(loudest, crash, 2);
}

TEST(Microphone, HearsTheProgramsToneAsABlockExactlyItsLength) {
    // A seed whose first break comes after the tone has ended.
    std::uint64_t seed = 1;
    while (demoBreak(seed, 0).startSeconds < 1.4) {
        ++seed;
    }
    TempFolder folder;
    TestEngine engine(seed);
    auto audio = demoMicrophone(engine, folder.file("tone.wav"));
    ASSERT_TRUE(audio->StartCapture().ok());
    engine.tones.publish({400.0, std::chrono::steady_clock::now() + 100ms, 1000ms});
    QTest::qWait(1250);
    audio->StopCapture();

    const std::vector<std::int16_t> words = wordsOf(folder.file("tone.wav"));
    const auto left = [&](long frame) { return words[size_t(22 + 2 * frame)]; };
    long firstFrame = -1;
    long lastFrame = -1;
    for (long frame = 0; 23 + 2 * frame < long(words.size()); ++frame) {
        if (std::abs(left(frame)) > 1500) {
            firstFrame = firstFrame < 0 ? frame : firstFrame;
            lastFrame = frame;
        }
    }
    ASSERT_GE(firstFrame, 0);
    // 400 cycles: 800 changes of sign within the block.
    int crossings = 0;
    for (long frame = firstFrame + 1; frame <= lastFrame; ++frame) {
        crossings += (left(frame) < 0) != (left(frame - 1) < 0);
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
    audio->SetCaptureFile(folder.file("never.wav"));
    EXPECT_FALSE(audio->StartCapture().ok());
    EXPECT_FALSE(QFile::exists(folder.file("never.wav")));

    audio->SetAudioDevice(engine.demoMicrophoneIndex());
    ASSERT_TRUE(audio->SetConnected(true));
    // A file that can't be made: the reason names it.
    const QString nowhere = folder.file("gone/never.wav");
    audio->SetCaptureFile(nowhere);
    const MediaError refused = audio->StartCapture();
    EXPECT_EQ(refused.number, media_error::WriteFailed);
    EXPECT_TRUE(refused.text.startsWith(nowhere + ": ")) << refused.text.toStdString();
    EXPECT_FALSE(audio->IsCapturing());
    audio->SetCaptureFile(folder.file("never.wav"));
    QTest::qWait(400);
    EXPECT_LE(audio->AudioLevel(), 2);
    engine.tones.publish({1000.0, std::chrono::steady_clock::now(), 600ms});
    QTest::qWait(300);
    EXPECT_GE(audio->AudioLevel(), 30);
    EXPECT_LE(audio->AudioLevel(), 45);
    QTest::qWait(800);
    EXPECT_LE(audio->AudioLevel(), 2);

    // Disconnecting ends a recording with a whole file.
    ASSERT_TRUE(audio->StartCapture().ok());
    QTest::qWait(200);
    EXPECT_TRUE(audio->SetConnected(false));
    EXPECT_FALSE(audio->IsCapturing());
    expectPlainWavHeader(folder.file("never.wav"));
    EXPECT_EQ(audio->AudioLevel(), 0);
}

// A limit on the size of the files this process writes stands in for a full disk where the
// system has one.
#ifdef __unix__
TEST(Microphone, AFullDiskEndsTheRecordingOnceWithAReadableFile) {
    TempFolder folder;
    TestEngine engine;
    const QString path = folder.file("full.wav");
    auto audio = demoMicrophone(engine, path);
    QSignalSpy failed(audio.get(), &AudioInstance::captureFailed);
    rlimit saved{};
    getrlimit(RLIMIT_FSIZE, &saved);
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = saved;
    small.rlim_cur = 100'002; // not a whole number of frames
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool started = audio->StartCapture().ok();
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
#endif
