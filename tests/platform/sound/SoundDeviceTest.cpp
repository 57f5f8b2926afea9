// WAV files as a sound server receives them: played into a private PulseAudio server and heard
// again from its output's monitor (the beep is heard so in tests/breakspeed). The server must be
// there before anything in the process asks for sound devices, so these tests have a program of
// their own.

#include "platform/sound/SoundOutput.h"
#include "support/SoundServer.h"
#include "support/TempFolder.h"

#include <chrono>
#include <cmath>
#include <thread>

#include <QAudioDevice>
#include <QMediaDevices>

#include <gtest/gtest.h>

namespace ravelcue::sound {
namespace {

// The stretch of a recording louder than silence, and the frequency of its sine.
struct Heard {
    double seconds = 0;
    double frequencyHz = 0;
};

Heard Analyse(const std::vector<qint16>& samples, size_t from, size_t to) {
    Heard heard;
    size_t first = to;
    size_t last = from;
    for (size_t i = from; i < to; ++i) {
        if (std::abs(samples[i]) > 2000) {
            first = std::min(first, i);
            last = i;
        }
    }
    if (first >= last) {
        return heard;
    }
    int rises = 0;
    for (size_t i = first + 1; i <= last; ++i) {
        rises += (samples[i - 1] < 0 && samples[i] >= 0) ? 1 : 0;
    }
    heard.seconds = static_cast<double>(last - first) / 44100;
    heard.frequencyHz = rises / heard.seconds;
    return heard;
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
    for (const auto& [path, hz, secs] : {std::tuple{longWave, 600, 1.5}, {shortWave, 1200, 0.3}}) {
        const std::string make =
            "ffmpeg -nostdin -v error -y -f lavfi -i sine=frequency=" + std::to_string(hz) +
            ":sample_rate=44100:duration=" + std::to_string(secs) + " -af volume=3 '" +
            path.toStdString() + "'";
        ASSERT_EQ(std::system(make.c_str()), 0);
    }
    const std::vector<qint16> recording = server_->record(2.5, [&] {
        EXPECT_TRUE(sound.PlayWaveFile(longWave));
        std::this_thread::sleep_for(std::chrono::milliseconds(400));
        EXPECT_TRUE(sound.PlayWaveFile(shortWave));
    });
    // Both were heard, and all that was heard lasted far less than the long one alone.
    const Heard all = Analyse(recording, 0, recording.size());
    EXPECT_GT(all.seconds, 0.4);
    EXPECT_LT(all.seconds, 1.2);
    const Heard tail = Analyse(recording, recording.size() / 2, recording.size());
    EXPECT_EQ(tail.seconds, 0); // nothing of the long one in the second half
}

} // namespace
} // namespace ravelcue::sound
