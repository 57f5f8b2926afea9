#include "MediaEngineTestSupport.h"
#include "platform/media/LiveFrame.h"
#include "platform/media/VideoView.h"
#include "platform/media/demo/DemoScene.h"
#include "support/Ffprobe.h"
#include "support/TempFolder.h"

#include <csignal>
#include <future>
#include <sys/resource.h>

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

using namespace ravelcue;
using namespace ravelcue::media;
using ravelcue::test::TempFolder;
using ravelcue::test::TestEngine;

namespace {

struct Recording {
    QString name;
    QString codecName;
    int compressor; // -1: uncompressed; -2: WMV by extension
};

struct Interval {
    std::int64_t fromMs;
    std::int64_t toMs;
};

// What a file must show of a recording that ran through the given intervals of the capture
// clock: every frame stamped within one of them, none twice, each gap accounted for. Gives the
// stamps read.
std::vector<DemoStamp> expectFrameExact(const QString& path, const QString& codecName,
                                        const CaptureStats& stats,
                                        const std::vector<Interval>& running,
                                        QSize size = QSize(640, 480)) {
    SCOPED_TRACE(path.toStdString());
    const test::VideoProbe probe = test::probeVideo(path);
    EXPECT_TRUE(probe.ok);
    EXPECT_EQ(probe.codecName, codecName);
    EXPECT_EQ(QSize(probe.width, probe.height), size);
    EXPECT_EQ(probe.frameCount, stats.framesWritten);
    // The file lasts one frame period for every slot: written or lost.
    EXPECT_NEAR(probe.durationSeconds, (stats.framesWritten + stats.framesDropped) / 30.0, 0.05);

    const std::vector<DemoStamp> stamps = test::stampsOf(path, size);
    EXPECT_EQ(stamps.size(), size_t(stats.framesWritten));
    int lost = 0;
    int pauses = 0;
    int unreadable = 0;
    int outside = 0;
    int backwards = 0;
    for (size_t i = 0; i < stamps.size(); ++i) {
        unreadable += stamps[i].valid ? 0 : 1;
        const auto clock = std::int64_t(stamps[i].clockMs);
        const bool inside = std::any_of(running.begin(), running.end(), [&](const Interval& r) {
            return clock >= r.fromMs && clock <= r.toMs;
        });
        outside += inside ? 0 : 1;
        if (i == 0) {
            continue;
        }
        const std::int64_t step = std::int64_t(stamps[i].frameCounter) - stamps[i - 1].frameCounter;
        const bool acrossPause = std::any_of(running.begin() + 1, running.end(), [&](auto& r) {
            return stamps[i - 1].clockMs < r.fromMs && clock >= r.fromMs;
        });
        if (step < 1) {
            ++backwards;
        } else if (acrossPause) {
            ++pauses;
        } else {
            lost += int(step - 1);
        }
    }
    EXPECT_EQ(unreadable, 0);
    EXPECT_EQ(outside, 0) << "frames taken while the recording was held";
    EXPECT_EQ(backwards, 0) << "frames doubled or out of order";
    EXPECT_EQ(pauses, int(running.size()) - 1);
    EXPECT_EQ(lost, stats.framesDropped);
    return stamps;
}

} // namespace

TEST(Capture, EveryCompressorAndProfileRecordsFrameExactFilesThatPauseHolds) {
    const std::vector<std::vector<Recording>> rounds = {
        {{"mjpeg.avi", "mjpeg", 0},
         {"h264.avi", "h264", 1},
         {"mpeg4.avi", "mpeg4", 2},
         {"ffv1.avi", "ffv1", 3}},
        {{"huffyuv.avi", "huffyuv", 4}, {"none.avi", "rawvideo", -1}, {"wmv2.wmv", "wmv2", -2}},
    };
    TempFolder folder;
    TestEngine engine;
    for (const auto& round : rounds) {
        std::vector<std::unique_ptr<CaptureInstance>> cameras;
        for (size_t i = 0; i < round.size(); ++i) {
            const Recording& recording = round[i];
            auto camera = engine.demoCamera(int(i) + 1);
            ASSERT_TRUE(camera->Connected());
            camera->SetCaptureFile(folder.file(recording.name));
            bool started = false;
            if (recording.compressor == -1) {
                camera->SetCompressorIndex(-1);
                started = camera->StartCaptureUncompressed();
            } else {
                camera->SetCompressorIndex(std::max(0, recording.compressor));
                camera->SetProfileIndex(0);
                started = camera->StartCapture();
            }
            ASSERT_TRUE(started) << recording.name.toStdString();
            camera->PauseCapture();
            cameras.push_back(std::move(camera));
        }
        // Held, then released together; paused a while, then released again.
        std::vector<Interval> running;
        QTest::qWait(300);
        for (int span : {700, 500}) {
            const std::int64_t from = engine.clockMsNow();
            for (auto& camera : cameras) {
                camera->ResumeCapture();
            }
            QTest::qWait(span);
            for (auto& camera : cameras) {
                camera->PauseCapture();
            }
            running.push_back({from, engine.clockMsNow()});
            QTest::qWait(400);
        }
        std::vector<CaptureStats> stats;
        for (auto& camera : cameras) {
            EXPECT_TRUE(camera->IsCapturing());
            camera->StopCapture();
            EXPECT_FALSE(camera->IsCapturing());
            stats.push_back(camera->GetCaptureStats());
        }
        // The files are checked side by side: most of the time goes into starting ffmpeg.
        std::vector<std::future<std::vector<DemoStamp>>> checks;
        for (size_t i = 0; i < round.size(); ++i) {
            checks.push_back(std::async(std::launch::async, [&, i] {
                return expectFrameExact(folder.file(round[i].name), round[i].codecName, stats[i],
                                        running);
            }));
        }
        std::vector<std::uint32_t> firstClocks;
        for (size_t i = 0; i < round.size(); ++i) {
            const std::vector<DemoStamp> stamps = checks[i].get();
            const std::int64_t ranMs =
                (running[0].toMs - running[0].fromMs) + (running[1].toMs - running[1].fromMs);
            EXPECT_NEAR(stats[i].elapsedMs, ranMs, 40);
            ASSERT_FALSE(stamps.empty());
            firstClocks.push_back(stamps.front().clockMs);
        }
        // Released in one loop, the members of the set start within a frame of each other.
        const auto [earliest, latest] = std::minmax_element(firstClocks.begin(), firstClocks.end());
        EXPECT_LE(*latest - *earliest, 34u);
    }
}

TEST(Capture, ConnectsAtAnySizeAndHandsOverLiveFramesAndOverlays) {
    TestEngine engine;
    DeviceCatalog& devices = engine.engine->devices();
    const int count = devices.VideoDeviceCount();
    ASSERT_GE(count, 4);
    for (int n = 1; n <= 4; ++n) {
        EXPECT_EQ(devices.VideoDeviceName(count - 5 + n), QStringLiteral("Demo Camera %1").arg(n));
    }
    EXPECT_EQ(devices.AudioDeviceName(devices.AudioDeviceCount() - 1), "Demo Microphone");

    auto capture = engine.engine->createCapture(0);
    EXPECT_EQ(capture->GetVideoSize(), QSize(0, 0));
    EXPECT_FALSE(capture->StartCapture());
    EXPECT_TRUE(capture->FrameBytes().isEmpty());
    capture->SetVideoDevice(count + 3);
    capture->SetConnected(true);
    EXPECT_FALSE(capture->Connected());

    capture = engine.demoCamera(1);
    capture->SetRenderMode(1);
    EXPECT_EQ(capture->GetVideoSize(), QSize(640, 480));
    EXPECT_DOUBLE_EQ(capture->GetFrameRate(), 30.0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !capture->FrameBytes().isEmpty(); }));

    // The live frame is the camera's picture itself, byte for byte.
    const QByteArray bytes = capture->FrameBytes();
    QImage picture(640, 480, QImage::Format_RGB888);
    for (int y = 0; y < 480; ++y) {
        const char* row = bytes.constData() + (479 - y) * kLiveFrameStride;
        for (int x = 0; x < 640; ++x) {
            picture.setPixel(x, y,
                             qRgb(uchar(row[x * 3 + 2]), uchar(row[x * 3 + 1]), uchar(row[x * 3])));
        }
    }
    const DemoStamp stamp = readDemoStamp(picture);
    ASSERT_TRUE(stamp.valid);
    EXPECT_EQ(
        liveFrameBytes(DemoScene(1, QSize(640, 480)).render(stamp.frameCounter, stamp.clockMs)),
        bytes);

    // Any size up to 1920x1080; the live frame stays 640x480.
    EXPECT_TRUE(capture->SetVideoSize(1280, 720));
    EXPECT_EQ(capture->GetVideoSize(), QSize(1280, 720));
    EXPECT_FALSE(capture->SetVideoSize(2560, 1440));
    EXPECT_EQ(capture->GetVideoSize(), QSize(1280, 720));
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return capture->view()->pictureSize() == QSize(1280, 720); }));
    EXPECT_EQ(capture->FrameBytes().size(), 640 * 480 * 3);
    capture->SetRenderMode(0);
    EXPECT_TRUE(capture->FrameBytes().isEmpty());

    // The shape layer shows over the picture; black lets the picture through.
    QImage overlay(1280, 720, QImage::Format_RGB32);
    overlay.fill(Qt::black);
    overlay.setPixel(900, 600, qRgb(255, 0, 255));
    capture->SetBitmapOverlay(overlay);
    const QImage composed = capture->view()->composedFrame();
    EXPECT_EQ(composed.pixel(900, 600), qRgb(255, 0, 255));
    EXPECT_EQ(composed.pixel(200, 600), capture->view()->currentFrame().pixel(200, 600));

    // Without preview the view holds still.
    capture->SetPreview(false);
    QTest::qWait(50);
    const DemoStamp held = readDemoStamp(capture->view()->currentFrame());
    QTest::qWait(150);
    EXPECT_EQ(readDemoStamp(capture->view()->currentFrame()), held);

    capture->SetConnected(false);
    EXPECT_EQ(capture->GetVideoSize(), QSize(0, 0));
    EXPECT_TRUE(capture->view()->currentFrame().isNull());
    // The size stays chosen for the next connection.
    capture->SetConnected(true);
    EXPECT_EQ(capture->GetVideoSize(), QSize(1280, 720));
}

TEST(Capture, AVanishedCameraEndsItsOwnFileAndTheOthersGoOn) {
    TempFolder folder;
    TestEngine engine;
    auto staying = engine.demoCamera(2);
    auto leaving = engine.demoCamera(3);
    QSignalSpy stayingFailed(staying.get(), &CaptureInstance::captureFailed);
    QSignalSpy leavingFailed(leaving.get(), &CaptureInstance::captureFailed);
    staying->SetCaptureFile(folder.file("staying.avi"));
    leaving->SetCaptureFile(folder.file("leaving.avi"));
    ASSERT_TRUE(staying->StartCapture());
    ASSERT_TRUE(leaving->StartCapture());
    const std::int64_t startMs = engine.clockMsNow();

    QTest::qWait(600);
    engine.engine->setDemoCameraPresent(3, false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return leavingFailed.count() > 0; }));
    EXPECT_FALSE(leaving->IsCapturing());
    EXPECT_FALSE(leaving->Connected());
    EXPECT_TRUE(leavingFailed.first().first().toString().contains("Demo Camera 3"));
    EXPECT_TRUE(staying->IsCapturing());
    QTest::qWait(300);
    staying->StopCapture();
    leaving->StopCapture();
    QTest::qWait(50);
    EXPECT_EQ(leavingFailed.count(), 1);
    EXPECT_EQ(stayingFailed.count(), 0);

    const std::int64_t endMs = engine.clockMsNow();
    expectFrameExact(folder.file("leaving.avi"), "mjpeg", leaving->GetCaptureStats(),
                     {{startMs, endMs}});
    expectFrameExact(folder.file("staying.avi"), "mjpeg", staying->GetCaptureStats(),
                     {{startMs, endMs}});
    EXPECT_GT(staying->GetCaptureStats().framesWritten,
              leaving->GetCaptureStats().framesWritten + 5);

    // Plugged back in, it connects again.
    engine.engine->setDemoCameraPresent(3, true);
    leaving->SetConnected(true);
    EXPECT_TRUE(leaving->Connected());
}

TEST(Capture, AFullDiskEndsTheFileCleanlyOnceAndTheOthersGoOn) {
    TempFolder folder;
    TestEngine engine;
    // Small pictures keep the lasting camera far from the limit; uncompressed ones reach it fast.
    auto filling = engine.demoCamera(1, 320, 240);
    auto lasting = engine.demoCamera(2, 160, 120);
    QSignalSpy fillingFailed(filling.get(), &CaptureInstance::captureFailed);
    QSignalSpy lastingFailed(lasting.get(), &CaptureInstance::captureFailed);
    filling->SetCaptureFile(folder.file("filling.avi"));
    lasting->SetCaptureFile(folder.file("lasting.avi"));

    // A limit on the size of the files this process writes stands in for a small disk.
    constexpr rlim_t kLimit = 4 * 1024 * 1024;
    rlimit saved{};
    getrlimit(RLIMIT_FSIZE, &saved);
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = saved;
    small.rlim_cur = kLimit;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const std::int64_t startMs = engine.clockMsNow();
    const bool fillingStarted = filling->StartCaptureUncompressed();
    const bool lastingStarted = lasting->StartCapture();
    if (fillingStarted && lastingStarted) {
        (void)QTest::qWaitFor([&] { return fillingFailed.count() > 0; }, 10000);
        QTest::qWait(300);
    }
    const bool lastingWentOn = lasting->IsCapturing();
    lasting->StopCapture();
    filling->StopCapture();
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previousHandler);
    ASSERT_TRUE(fillingStarted && lastingStarted);

    ASSERT_EQ(fillingFailed.count(), 1);
    EXPECT_TRUE(fillingFailed.first().first().toString().contains("disk is full"));
    EXPECT_EQ(lastingFailed.count(), 0);
    EXPECT_TRUE(lastingWentOn);
    EXPECT_LE(QFileInfo(folder.file("filling.avi")).size(), qint64(kLimit));

    const std::int64_t endMs = engine.clockMsNow();
    const CaptureStats stats = filling->GetCaptureStats();
    EXPECT_GT(stats.framesWritten, 3);
    const test::VideoProbe probe = test::probeVideo(folder.file("filling.avi"));
    ASSERT_TRUE(probe.ok);
    EXPECT_EQ(probe.codecName, "rawvideo");
    EXPECT_EQ(probe.frameCount, stats.framesWritten);
    const std::vector<DemoStamp> stamps =
        test::stampsOf(folder.file("filling.avi"), QSize(320, 240));
    ASSERT_EQ(stamps.size(), size_t(stats.framesWritten));
    for (size_t i = 1; i < stamps.size(); ++i) {
        EXPECT_GT(stamps[i].frameCounter, stamps[i - 1].frameCounter);
    }
    EXPECT_GE(std::int64_t(stamps.front().clockMs), startMs);
    EXPECT_LE(std::int64_t(stamps.back().clockMs), endMs);
}
