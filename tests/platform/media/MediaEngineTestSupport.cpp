#include "MediaEngineTestSupport.h"

#include "support/Ffprobe.h"

namespace ravelcue::test {

TestEngine::TestEngine(std::uint64_t seed) {
    media::ffmpeg::FfmpegEngineOptions options;
    options.demoMicrophoneSeed = seed;
    options.randomDemoSeed = false;
    engine = std::make_unique<media::ffmpeg::FfmpegEngine>(tones, options);
}

int TestEngine::demoCameraIndex(int demoNumber) {
    media::DeviceCatalog& devices = engine->devices();
    for (int i = 0; i < devices.VideoDeviceCount(); ++i) {
        if (devices.VideoDeviceName(i) == QStringLiteral("Demo Camera %1").arg(demoNumber)) {
            return i;
        }
    }
    return -1;
}

int TestEngine::demoMicrophoneIndex() {
    return engine->devices().AudioDeviceCount() - 1;
}

std::int64_t TestEngine::clockMsNow() const {
    const media::CaptureClock& clock = engine->captureClock();
    return clock.msAt(media::CaptureClock::now());
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
