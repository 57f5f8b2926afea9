// A camera read through libavdevice, as a webcam is, on a machine without one: the screen of an
// Xvfb server of the test's own, through x11grab, added to the engine's cameras.

#include "core/ToneBus.h"
#include "platform/media/CaptureInstance.h"
#include "platform/media/DeviceCatalog.h"
#include "platform/media/ffmpeg/FfmpegEngine.h"
#include "support/Ffprobe.h"
#include "support/MediaFiles.h"
#include "support/TempFolder.h"
#include "support/XServer.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

using media::CaptureInstance;
using media::MediaError;

// Slow enough that a busy machine's hiccups stay within a frame: the recorder counts a frame
// that comes more than half a frame late as a gap.
constexpr double kRate = 5;
const QSize kScreen(320, 240);

class ScreenCamera : public ::testing::Test {
protected:
    void SetUp() override {
        server_ = std::make_unique<PrivateXServer>(kScreen);
        if (!server_->running()) {
            GTEST_SKIP() << "Xvfb could not start: there is no screen for x11grab to read";
        }
        media::ffmpeg::FfmpegEngineOptions options;
        options.addedCameras.push_back(
            {QStringLiteral("Test Screen"), QStringLiteral("x11grab"), server_->display(), 0});
        engine_ = std::make_unique<media::ffmpeg::FfmpegEngine>(tones_, std::move(options));
    }

    int indexOf(const QString& name) {
        media::DeviceCatalog& devices = engine_->devices();
        for (int i = 0; i < devices.VideoDeviceCount(); ++i) {
            if (devices.VideoDeviceName(i) == name) {
                return i;
            }
        }
        return -1;
    }

    // Connected, previewing, recording to MJPEG AVI in `file`.
    std::unique_ptr<CaptureInstance> recording(const QString& name, const QString& file) {
        auto camera = engine_->createCapture(0);
        camera->SetVideoDevice(indexOf(name));
        camera->SetCaptureFrameRate(kRate);
        camera->SetVideoSize(kScreen.width(), kScreen.height());
        camera->SetConnected(true);
        EXPECT_TRUE(camera->Connected()) << name.toStdString();
        camera->SetPreview(true);
        camera->SetCompressorIndex(0);
        camera->SetCaptureFile(file);
        const MediaError started = camera->StartCapture();
        EXPECT_TRUE(started.ok()) << started.text.toStdString();
        return camera;
    }

    ToneBus tones_;
    std::unique_ptr<PrivateXServer> server_;
    std::unique_ptr<media::ffmpeg::FfmpegEngine> engine_;
    TempFolder folder_;
};

TEST_F(ScreenCamera, IsListedAfterTheSystemsCamerasAndBeforeTheDemoCameras) {
    const int screen = indexOf(QStringLiteral("Test Screen"));
    EXPECT_GE(screen, 0);
    EXPECT_EQ(indexOf(QStringLiteral("Demo Camera 1")), screen + 1);
    engine_->devices().refresh();
    EXPECT_EQ(indexOf(QStringLiteral("Test Screen")), screen) << "kept by a refresh";
}

TEST_F(ScreenCamera, RecordsEveryFrameInTimeOrder) {
    const QString file = folder_.file(QStringLiteral("screen.avi"));
    auto camera = recording(QStringLiteral("Test Screen"), file);
    ASSERT_TRUE(camera->IsCapturing());
    EXPECT_EQ(camera->GetVideoSize(), kScreen);
    EXPECT_DOUBLE_EQ(camera->GetFrameRate(), kRate);
    QTest::qWait(3000);
    camera->StopCapture();
    const media::CaptureStats stats = camera->GetCaptureStats();
    EXPECT_EQ(stats.framesDropped, 0);
    EXPECT_GE(stats.framesWritten, 5);

    const VideoProbe probe = probeVideo(file);
    ASSERT_TRUE(probe.ok);
    EXPECT_EQ(probe.codecName, "mjpeg");
    EXPECT_EQ(QSize(probe.width, probe.height), kScreen);
    EXPECT_EQ(probe.frameCount, stats.framesWritten);
    const std::vector<double> times = framePtsSeconds(file);
    ASSERT_EQ(int(times.size()), stats.framesWritten);
    for (size_t i = 1; i < times.size(); ++i) {
        EXPECT_NEAR(times[i] - times[i - 1], 1 / kRate, 1e-3) << "frame " << i;
    }
    // The screen's own picture, white, made it into the file.
    const QImage first = extractFrame(file, 0);
    ASSERT_FALSE(first.isNull());
    EXPECT_GT(qGray(first.pixel(10, 10)), 230);
}

TEST_F(ScreenCamera, AScreenThatGoesAwayEndsItsRecordingWithAMessageAndTheDemoCameraGoesOn) {
    const QString screenFile = folder_.file(QStringLiteral("screen.avi"));
    const QString demoFile = folder_.file(QStringLiteral("demo.avi"));
    auto screen = recording(QStringLiteral("Test Screen"), screenFile);
    auto demo = recording(QStringLiteral("Demo Camera 1"), demoFile);
    QTest::qWait(1500);
    QSignalSpy failed(screen.get(), &CaptureInstance::captureFailed);
    server_->kill();
    ASSERT_TRUE(failed.wait(20000)) << "the recording went on without its camera";
    const auto error = failed.takeFirst().at(0).value<MediaError>();
    EXPECT_EQ(error.number, media::media_error::DeviceUnavailable);
    EXPECT_TRUE(error.text.startsWith("Test Screen stopped sending pictures"))
        << error.text.toStdString();
    EXPECT_TRUE(error.text.endsWith("The recording up to that moment is kept in screen.avi."))
        << error.text.toStdString();
    EXPECT_FALSE(screen->IsCapturing());
    EXPECT_FALSE(screen->Connected());
    const VideoProbe screenProbe = probeVideo(screenFile);
    ASSERT_TRUE(screenProbe.ok);
    EXPECT_GE(screenProbe.frameCount, 3);

    // The other camera goes on writing, however busy the machine.
    const int writtenBefore = demo->GetCaptureStats().framesWritten;
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return demo->GetCaptureStats().framesWritten > writtenBefore; }, 30000));
    EXPECT_TRUE(demo->IsCapturing());
    demo->StopCapture();
    EXPECT_TRUE(probeVideo(demoFile).ok);
    EXPECT_TRUE(failed.isEmpty()) << "said once";
}

} // namespace
} // namespace ravelcue::test
