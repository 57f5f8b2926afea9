#include "MediaEngineTestSupport.h"

#include "support/Ffprobe.h"

#include <gtest/gtest.h>

extern "C" {
#include <libavutil/log.h>
}

namespace ravelcue::test {

TestEngine::TestEngine(std::uint64_t seed) {
    media::ffmpeg::FfmpegEngineOptions options;
    options.demoMicrophoneSeed = seed;
    options.randomDemoSeed = false;
    engine = std::make_unique<media::ffmpeg::FfmpegEngine>(tones, options);
}

// The demo cameras close the list of video devices, the demo microphone that of audio ones.
int TestEngine::demoCameraIndex(int demoNumber) {
    return engine->devices().VideoDeviceCount() - 5 + demoNumber;
}

int TestEngine::demoMicrophoneIndex() {
    return engine->devices().AudioDeviceCount() - 1;
}

std::int64_t TestEngine::clockMsNow() const {
    return engine->captureClock().msAt(media::CaptureClock::now());
}

std::unique_ptr<media::CaptureInstance> TestEngine::demoCamera(int demoNumber, int width,
                                                               int height, double rate) {
    auto capture = engine->createCapture(demoNumber - 1);
    capture->SetVideoDevice(demoCameraIndex(demoNumber));
    capture->SetCaptureFrameRate(rate);
    capture->SetConnected(true);
    capture->SetVideoSize(width, height);
    capture->SetPreview(true);
    return capture;
}

std::vector<media::DemoStamp> stampsOf(const QString& path, QSize size) {
    std::vector<media::DemoStamp> stamps;
    if (!forEachFrame(path, size, [&](int, const QImage& frame) {
            stamps.push_back(media::readDemoStamp(frame));
        })) {
        stamps.clear();
    }
    return stamps;
}

} // namespace ravelcue::test

namespace {

// Encoders report every file they write; the tests look at the files themselves.
class QuietFfmpeg : public ::testing::Environment {
public:
    void SetUp() override { av_log_set_level(AV_LOG_ERROR); }
};

const ::testing::Environment* const quietFfmpeg =
    ::testing::AddGlobalTestEnvironment(new QuietFfmpeg);

} // namespace
