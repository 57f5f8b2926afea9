// The sounds as a sound server receives them: a private PulseAudio server with a null output is
// started for these tests, and what reaches its output is recorded from the output's monitor.
// The server must be there before anything in the process asks for sound devices, so these
// tests have a program of their own.

#include "platform/sound/SoundOutput.h"
#include "support/TempFolder.h"

#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdio>
#include <functional>
#include <memory>
#include <mutex>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>

#include <QAudioDevice>
#include <QDir>
#include <QFileInfo>
#include <QMediaDevices>

#include <gtest/gtest.h>

extern char** environ;

namespace ravelcue::sound {
namespace {

// A stretch of the recording louder than silence, and the frequency of its sine.
struct Heard {
    double seconds = 0;
    double frequencyHz = 0;
};

Heard Analyse(const std::vector<qint16>& samples, int rate, size_t from, size_t to) {
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
    heard.seconds = static_cast<double>(last - first) / rate;
    heard.frequencyHz = rises / heard.seconds;
    return heard;
}

class SoundDevice : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        folder_ = std::make_unique<test::TempFolder>();
        const std::string dir = folder_->path().toStdString();
        const std::string socket = dir + "/native";
        const std::string protocol =
            "module-native-protocol-unix auth-anonymous=1 socket=" + socket;
        const char* argv[] = {"pulseaudio",
                              "-n",
                              "--daemonize=no",
                              "--exit-idle-time=-1",
                              "--use-pid-file=no",
                              "--log-target=stderr",
                              "--log-level=0",
                              "-L",
                              protocol.c_str(),
                              "-L",
                              "module-null-sink sink_name=ravelcue_test",
                              nullptr};
        setenv("HOME", dir.c_str(), 1);
        setenv("XDG_RUNTIME_DIR", dir.c_str(), 1);
        if (posix_spawnp(&server_, "pulseaudio", nullptr, nullptr, const_cast<char**>(argv),
                         environ) != 0) {
            server_ = 0;
            return;
        }
        // Wait for the server's socket; a machine without PulseAudio skips these tests.
        for (int i = 0; i < 200 && !QFileInfo::exists(QString::fromStdString(socket)); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        // Qt Multimedia meets the sound server on first use, which is after this.
        setenv("PULSE_SERVER", ("unix:" + socket).c_str(), 1);
    }

    static void TearDownTestSuite() {
        if (server_ > 0) {
            kill(server_, SIGTERM);
            waitpid(server_, nullptr, 0);
        }
        folder_.reset();
    }

    void SetUp() override {
        if (server_ <= 0 || QMediaDevices::audioOutputs().isEmpty()) {
            GTEST_SKIP() << "no PulseAudio server to play into";
        }
    }

    // Records the server's output for `seconds`, running `play` once the recording has begun.
    static std::vector<qint16> Record(double seconds, const std::function<void()>& play) {
        const std::string command =
            "ffmpeg -nostdin -v error -f pulse -i ravelcue_test.monitor -t " +
            std::to_string(seconds) + " -ac 1 -ar 44100 -f s16le -";
        FILE* pipe = popen(command.c_str(), "r");
        if (pipe == nullptr) {
            return {};
        }
        std::vector<qint16> samples;
        std::mutex mutex;
        std::condition_variable started;
        std::thread reader([&] {
            qint16 buffer[1024];
            size_t got = 0;
            while ((got = std::fread(buffer, sizeof(qint16), 1024, pipe)) > 0) {
                std::lock_guard lock(mutex);
                samples.insert(samples.end(), buffer, buffer + got);
                started.notify_all();
            }
            std::lock_guard lock(mutex);
            started.notify_all();
        });
        {
            std::unique_lock lock(mutex);
            started.wait(lock);
        }
        play();
        reader.join();
        pclose(pipe);
        return samples;
    }

    static inline pid_t server_ = 0;
    static inline std::unique_ptr<test::TempFolder> folder_;
};

TEST_F(SoundDevice, PlayBeepSoundsTheTone) {
    ToneBus bus;
    SoundOutput sound(bus);
    ASSERT_TRUE(sound.SoundDeviceExists());
    const std::vector<qint16> recording = Record(2.0, [&] { sound.PlayBeep(400, 500); });
    ASSERT_GT(recording.size(), 44100U);
    const Heard heard = Analyse(recording, 44100, 0, recording.size());
    EXPECT_NEAR(heard.frequencyHz, 400, 8);
    EXPECT_NEAR(heard.seconds, 0.5, 0.05);
}

TEST_F(SoundDevice, ANewWaveCutsOffTheOneBefore) {
    ToneBus bus;
    SoundOutput sound(bus);
    const QString longWave = folder_->file("long.wav");
    const QString shortWave = folder_->file("short.wav");
    for (const auto& [path, hz, secs] : {std::tuple{longWave, 600, 1.5}, {shortWave, 1200, 0.3}}) {
        const std::string make =
            "ffmpeg -nostdin -v error -y -f lavfi -i sine=frequency=" + std::to_string(hz) +
            ":sample_rate=44100:duration=" + std::to_string(secs) + " -af volume=3 '" +
            path.toStdString() + "'";
        ASSERT_EQ(std::system(make.c_str()), 0);
    }
    const std::vector<qint16> recording = Record(2.5, [&] {
        EXPECT_TRUE(sound.PlayWaveFile(longWave));
        std::this_thread::sleep_for(std::chrono::milliseconds(400));
        EXPECT_TRUE(sound.PlayWaveFile(shortWave));
    });
    // Both were heard, and all that was heard lasted far less than the long one alone.
    const Heard all = Analyse(recording, 44100, 0, recording.size());
    EXPECT_GT(all.seconds, 0.4);
    EXPECT_LT(all.seconds, 1.2);
    const Heard tail = Analyse(recording, 44100, recording.size() / 2, recording.size());
    EXPECT_EQ(tail.seconds, 0); // nothing of the long one in the second half
}

} // namespace
} // namespace ravelcue::sound
