// WAV files as a sound server receives them: played into a private PulseAudio server and heard
// again from its output's monitor (the beep is heard so in tests/breakspeed). The server must be
// there before anything in the process asks for sound devices, so these tests have a program of
// their own.

#include "platform/sound/SoundOutput.h"
#include "support/MediaFiles.h"
#include "support/SoundServer.h"
#include "support/TempFolder.h"

#include <chrono>
#include <thread>

#include <QAudioDevice>
#include <QMediaDevices>

#include <gtest/gtest.h>

namespace ravelcue::sound {
namespace {

// Seconds from the first to the last sample louder than silence in [from, to).
double loudSeconds(const std::vector<qint16>& samples, size_t from, size_t to) {
    size_t first = to;
    size_t last = from;
    for (size_t i = from; i < to; ++i) {
        if (std::abs(samples[i]) > 2000) {
            first = std::min(first, i);
            last = i;
        }
    }
    return first >= last ? 0.0 : static_cast<double>(last - first) / 44100;
}

class SoundDevice : public ::testing::Test {
protected:
    static void SetUpTestSuite() { server_ = std::make_unique<test::PrivateSoundServer>(); }
    static void TearDownTestSuite() { server_.reset(); }

    void SetUp() override {
        if (!server_->running() || QMediaDevices::audioOutputs().isEmpty()) {
            GTEST_SKIP() << "no PulseAudio server to play into";
        }
    }

    static inline std::unique_ptr<test::PrivateSoundServer> server_;
};

TEST_F(SoundDevice, ANewWaveCutsOffTheOneBefore) {
    ToneBus bus;
    SoundOutput sound(bus);
    test::TempFolder folder;
    const QString longWave = folder.file("long.wav");
    const QString shortWave = folder.file("short.wav");
    ASSERT_TRUE(test::runFfmpeg(
        {"-f", "lavfi", "-i", "sine=frequency=600:duration=1.5", "-af", "volume=3", longWave}));
    ASSERT_TRUE(test::runFfmpeg(
        {"-f", "lavfi", "-i", "sine=frequency=1200:duration=0.3", "-af", "volume=3", shortWave}));
    const std::vector<qint16> recording = server_->record(2.5, [&] {
        EXPECT_TRUE(sound.PlayWaveFile(longWave));
        std::this_thread::sleep_for(std::chrono::milliseconds(400));
        EXPECT_TRUE(sound.PlayWaveFile(shortWave));
    });
    // Both were heard, and all that was heard lasted far less than the long one alone.
    const double heard = loudSeconds(recording, 0, recording.size());
    EXPECT_GT(heard, 0.4);
    EXPECT_LT(heard, 1.2);
    EXPECT_EQ(loudSeconds(recording, recording.size() / 2, recording.size()), 0)
        << "nothing of the long one in the second half";
}

} // namespace
} // namespace ravelcue::sound
