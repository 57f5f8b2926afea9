#include "MediaEngineTestSupport.h"
#include "platform/media/LiveFrame.h"
#include "platform/media/VideoView.h"
#include "platform/media/demo/DemoScene.h"
#include "support/Ffprobe.h"
#include "support/TempFolder.h"

#include <cmath>
#include <csignal>
#include <future>
#include <set>

#ifdef __unix__
#include <sys/resource.h>
#endif

#include <QFileInfo>
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

// A stretch in which a recording ran, on the capture clock: it was released between fromMs and
// releasedMs and held again by toMs.
struct Interval {
    std::int64_t fromMs;
    std::int64_t releasedMs;
    std::int64_t toMs;
};

constexpr double kPeriodMs = 1000.0 / 30;
constexpr QSize kSweepSize(320, 240);

// What a file must show of a recording that ran through the given intervals: every frame
// stamped within one of them, none twice, nothing in between, and every frame missing
// accounted for in the dropped count, those between frames as well as those lost right after a
// release. Gives the stamps read.
std::vector<DemoStamp> expectFrameExact(const QString& path, const QString& codecName,
                                        const CaptureStats& stats,
                                        const std::vector<Interval>& running,
                                        QSize size = QSize(640, 480)) {
    SCOPED_TRACE(path.toStdString() + ": " + std::to_string(stats.framesWritten) + " written, " +
                 std::to_string(stats.framesDropped) + " dropped");
    const test::VideoProbe probe = test::probeVideo(path);
    EXPECT_TRUE(probe.ok);
    EXPECT_EQ(probe.codecName, codecName);
    EXPECT_EQ(QSize(probe.width, probe.height), size);
    EXPECT_EQ(probe.frameCount, stats.framesWritten);
    // The file lasts one frame period for every slot: written or lost.
    EXPECT_NEAR(probe.durationSeconds, (stats.framesWritten + stats.framesDropped) / 30.0, 0.05);

    const std::vector<DemoStamp> stamps = test::stampsOf(path, size);
    EXPECT_EQ(stamps.size(), size_t(stats.framesWritten));
    int unreadable = 0, outside = 0, backwards = 0, lostBetween = 0;
    int leadingAtLeast = 0, leadingAtMost = 0;
    std::set<size_t> intervalsWithFrames;
    for (size_t i = 0; i < stamps.size(); ++i) {
        unreadable += stamps[i].valid ? 0 : 1;
        const auto clock = std::int64_t(stamps[i].clockMs);
        const auto in = std::find_if(running.begin(), running.end(), [&](const Interval& r) {
            return clock >= r.fromMs && clock <= r.toMs;
        });
        if (in == running.end()) {
            ++outside;
        } else if (intervalsWithFrames.insert(size_t(in - running.begin())).second) {
            // The first frame of a stretch: the slots before it, from the release, stay empty.
            leadingAtLeast += std::max(0, int(std::floor((clock - in->releasedMs) / kPeriodMs)));
            leadingAtMost += std::max(0, int(std::floor((clock - in->fromMs + 1) / kPeriodMs)));
        } else {
            const std::int64_t step =
                std::int64_t(stamps[i].frameCounter) - stamps[i - 1].frameCounter;
            backwards += step < 1 ? 1 : 0;
            lostBetween += std::max(0, int(step - 1));
        }
    }
    EXPECT_EQ(unreadable, 0);
    EXPECT_EQ(outside, 0) << "frames taken while the recording was held";
    EXPECT_EQ(backwards, 0) << "frames doubled or out of order";
    EXPECT_EQ(intervalsWithFrames.size(), running.size());
    EXPECT_GE(stats.framesDropped - lostBetween, leadingAtLeast);
    EXPECT_LE(stats.framesDropped - lostBetween, leadingAtMost);
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
            // Small pictures: the point is the files, not the load (the benchmark has that).
            auto camera = engine.demoCamera(int(i) + 1, kSweepSize.width(), kSweepSize.height());
            ASSERT_TRUE(camera->Connected());
            camera->SetCaptureFile(folder.file(recording.name));
            camera->SetCompressorIndex(recording.compressor == -2 ? 0 : recording.compressor);
            camera->SetProfileIndex(0);
            ASSERT_TRUE((recording.compressor == -1 ? camera->StartCaptureUncompressed()
                                                    : camera->StartCapture())
                            .ok())
                << recording.name.toStdString();
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
            const std::int64_t released = engine.clockMsNow();
            std::vector<std::int32_t> before;
            for (auto& camera : cameras) {
                before.push_back(camera->GetCaptureStats().framesWritten);
            }
            QTest::qWait(span);
            // A machine too busy to encode may need longer for a frame of every member to land
            // in the stretch; the checks are about the frames, not the time.
            EXPECT_TRUE(QTest::qWaitFor(
                [&] {
                    for (size_t i = 0; i < cameras.size(); ++i) {
                        if (cameras[i]->GetCaptureStats().framesWritten <= before[i]) {
                            return false;
                        }
                    }
                    return true;
                },
                60000));
            for (auto& camera : cameras) {
                camera->PauseCapture();
            }
            running.push_back({from, released, engine.clockMsNow()});
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
                                        running, kSweepSize);
            }));
        }
        const std::int64_t ranMs =
            (running[0].toMs - running[0].fromMs) + (running[1].toMs - running[1].fromMs);
        std::vector<std::uint32_t> firstClocks;
        for (size_t i = 0; i < round.size(); ++i) {
            const std::vector<DemoStamp> stamps = checks[i].get();
            EXPECT_NEAR(stats[i].elapsedMs, ranMs, 40);
            ASSERT_FALSE(stamps.empty());
            firstClocks.push_back(stamps.front().clockMs);
        }
        // Released in one loop, the members of the set start within a frame of each other. (A
        // member that lost its first frames, on a machine too busy to keep up, starts with
        // empty slots instead; the accounting above checks those.)
        const auto [earliest, latest] = std::minmax_element(firstClocks.begin(), firstClocks.end());
        if (std::all_of(stats.begin(), stats.end(), [](auto& s) { return s.framesDropped == 0; })) {
            EXPECT_LE(*latest - *earliest, 34u);
        }
    }
}

TEST(Capture, TheStoredCodecSettingsReachEveryRecordingsEncoder) {
    struct Case {
        QString name;
        int compressor;
        CodecSettings codec;
    };
    CodecSettings low;
    low.MjpegQuality = 4;
    CodecSettings high;
    high.MjpegQuality = 31;
    CodecSettings h264;
    h264.H264BitRate = 150;
    h264.H264KeyFrameInterval = 12;
    h264.MjpegQuality = 4; // belongs to another compressor: must not matter here
    CodecSettings mpeg4;
    mpeg4.Mpeg4KeyFrameInterval = 7;
    const std::vector<Case> cases = {
        {"low.avi", 0, low}, {"high.avi", 0, high}, {"h264.avi", 1, h264}, {"mpeg4.avi", 2, mpeg4}};
    TempFolder folder;
    TestEngine engine;
    std::vector<std::unique_ptr<CaptureInstance>> cameras;
    for (size_t i = 0; i < cases.size(); ++i) {
        auto camera = engine.demoCamera(int(i) + 1, kSweepSize.width(), kSweepSize.height());
        ASSERT_TRUE(camera->Connected());
        camera->SetCaptureFile(folder.file(cases[i].name));
        camera->SetCompressorIndex(cases[i].compressor);
        camera->SetCodecSettings(cases[i].codec);
        ASSERT_TRUE(camera->StartCapture().ok());
        cameras.push_back(std::move(camera));
    }
    // Settings changed after the start belong to the next recording.
    cameras[2]->SetCodecSettings(CodecSettings{});
    QTest::qWait(2500);
    // Enough frames for three key frames of each interval asked for, on a busy machine too.
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            return cameras[2]->GetCaptureStats().framesWritten > 2 * 12 &&
                   cameras[3]->GetCaptureStats().framesWritten > 2 * 7;
        },
        60000));
    std::vector<CaptureStats> stats;
    for (auto& camera : cameras) {
        camera->StopCapture();
        stats.push_back(camera->GetCaptureStats());
    }
    auto bytesPerFrame = [&](size_t i) {
        return double(QFileInfo(folder.file(cases[i].name)).size()) /
               std::max<std::int64_t>(1, stats[i].framesWritten);
    };
    EXPECT_GT(bytesPerFrame(1), 2 * bytesPerFrame(0)) << "the better MJPEG quality, the bigger";

    const test::VideoProbe probe = test::probeVideo(folder.file("h264.avi"));
    ASSERT_TRUE(probe.ok);
    EXPECT_EQ(probe.codecName, "h264");
    const double kbps =
        8 * QFileInfo(folder.file("h264.avi")).size() / probe.durationSeconds / 1000;
    EXPECT_GT(kbps, 150 * 0.5);
    EXPECT_LT(kbps, 150 * 1.6);

    // Key frames where asked for; every second (30 frames) for the recording on the defaults.
    for (const auto& [index, interval] : {std::pair{size_t(2), 12}, std::pair{size_t(3), 7}}) {
        const std::vector<int> keys = test::keyFrameIndices(folder.file(cases[index].name));
        SCOPED_TRACE(cases[index].name.toStdString());
        ASSERT_GE(keys.size(), 3u);
        for (size_t k = 0; k < keys.size(); ++k) {
            EXPECT_EQ(keys[k], int(k) * interval);
        }
    }
    cameras[2]->SetCaptureFile(folder.file("h264-defaults.avi"));
    ASSERT_TRUE(cameras[2]->StartCapture().ok());
    // At least two seconds' worth of frames, however long a busy machine takes to write them.
    QTest::qWait(1500);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return cameras[2]->GetCaptureStats().framesWritten > 31; }, 60000));
    cameras[2]->StopCapture();
    const std::vector<int> keys = test::keyFrameIndices(folder.file("h264-defaults.avi"));
    ASSERT_GE(keys.size(), 2u);
    EXPECT_EQ(keys[1], 30);
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
    EXPECT_FALSE(capture->StartCapture().ok());
    EXPECT_TRUE(capture->FrameBytes().isEmpty());
    capture->SetVideoDevice(count + 3);
    capture->SetConnected(true);
    EXPECT_FALSE(capture->Connected());

    capture = engine.demoCamera(1);
    capture->SetRenderMode(1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !capture->FrameBytes().isEmpty(); }));

    // The live frame is the camera's picture itself, byte for byte.
    const QByteArray bytes = capture->FrameBytes();
    const QImage picture = QImage(reinterpret_cast<const uchar*>(bytes.constData()), 640, 480,
                                  kLiveFrameStride, QImage::Format_BGR888)
                               .mirrored();
    const DemoStamp stamp = readDemoStamp(picture);
    ASSERT_TRUE(stamp.valid);
    EXPECT_EQ(
        liveFrameBytes(DemoScene(1, QSize(640, 480)).render(stamp.frameCounter, stamp.clockMs)),
        bytes);

    // Any size up to 1920x1080; the live frame stays 640x480.
    EXPECT_TRUE(capture->SetVideoSize(1280, 720));
    EXPECT_FALSE(capture->SetVideoSize(2560, 1440));
    EXPECT_EQ(capture->GetVideoSize(), QSize(1280, 720));
    // The live frame comes back with the first picture at the new size.
    ASSERT_TRUE(QTest::qWaitFor([&] {
        return capture->view()->pictureSize() == QSize(1280, 720) &&
               !capture->FrameBytes().isEmpty();
    }));
    EXPECT_EQ(capture->FrameBytes().size(), 640 * 480 * 3);

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

// A camera that disappears and one whose disk fills up end their own files cleanly, playable up
// to that moment, and say so once; the others go on. A limit on the size of the files this
// process writes stands in for a full disk where the system has one.
#ifdef __unix__
TEST(Capture, AVanishedCameraOrAFullDiskEndsOnlyItsOwnFile) {
    TempFolder folder;
    TestEngine engine;
    // Uncompressed pictures reach the limit fast; small compressed ones stay far from it.
    constexpr QSize kSmall(160, 120);
    auto filling = engine.demoCamera(1, 320, 240);
    auto leaving = engine.demoCamera(3, kSmall.width(), kSmall.height());
    auto staying = engine.demoCamera(2, kSmall.width(), kSmall.height());
    QSignalSpy fillingFailed(filling.get(), &CaptureInstance::captureFailed);
    QSignalSpy leavingFailed(leaving.get(), &CaptureInstance::captureFailed);
    QSignalSpy stayingFailed(staying.get(), &CaptureInstance::captureFailed);
    filling->SetCaptureFile(folder.file("filling.avi"));
    leaving->SetCaptureFile(folder.file("leaving.avi"));
    staying->SetCaptureFile(folder.file("staying.avi"));

    constexpr rlim_t kLimit = 4 * 1024 * 1024;
    rlimit saved{};
    getrlimit(RLIMIT_FSIZE, &saved);
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = saved;
    small.rlim_cur = kLimit;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const std::int64_t startMs = engine.clockMsNow();
    const bool started = filling->StartCaptureUncompressed().ok() && leaving->StartCapture().ok() &&
                         staying->StartCapture().ok();
    const std::int64_t startedMs = engine.clockMsNow();
    bool stayingWentOn = false;
    if (started) {
        QTest::qWait(600);
        engine.engine->setDemoCameraPresent(3, false);
        EXPECT_TRUE(QTest::qWaitFor([&] { return leavingFailed.count() > 0; }));
        EXPECT_FALSE(leaving->IsCapturing());
        (void)QTest::qWaitFor([&] { return fillingFailed.count() > 0; }, 10000);
        QTest::qWait(300);
        stayingWentOn = staying->IsCapturing();
    }
    for (auto* camera : {staying.get(), leaving.get(), filling.get()}) {
        camera->StopCapture();
    }
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previousHandler);
    ASSERT_TRUE(started);
    QTest::qWait(50);
    const Interval ran{startMs, startedMs, engine.clockMsNow()};

    EXPECT_FALSE(leaving->Connected());
    ASSERT_EQ(leavingFailed.count(), 1);
    const auto lost = leavingFailed.first().first().value<MediaError>();
    EXPECT_EQ(lost.number, media_error::DeviceUnavailable);
    EXPECT_TRUE(lost.text.contains("Demo Camera 3"));
    ASSERT_EQ(fillingFailed.count(), 1);
    const auto full = fillingFailed.first().first().value<MediaError>();
    EXPECT_EQ(full.number, media_error::DiskFull);
    EXPECT_TRUE(full.text.contains("disk is full"));
    EXPECT_EQ(stayingFailed.count(), 0);
    EXPECT_TRUE(stayingWentOn);

    expectFrameExact(folder.file("leaving.avi"), "mjpeg", leaving->GetCaptureStats(), {ran},
                     kSmall);
    expectFrameExact(folder.file("staying.avi"), "mjpeg", staying->GetCaptureStats(), {ran},
                     kSmall);
    EXPECT_GT(staying->GetCaptureStats().framesWritten,
              leaving->GetCaptureStats().framesWritten + 5);
    // What was written before the disk filled up plays, in order.
    EXPECT_LE(QFileInfo(folder.file("filling.avi")).size(), qint64(kLimit));
    const CaptureStats stats = filling->GetCaptureStats();
    EXPECT_GT(stats.framesWritten, 3);
    const test::VideoProbe probe = test::probeVideo(folder.file("filling.avi"));
    EXPECT_EQ(probe.codecName, "rawvideo");
    EXPECT_EQ(probe.frameCount, stats.framesWritten);
    const std::vector<DemoStamp> stamps =
        test::stampsOf(folder.file("filling.avi"), QSize(320, 240));
    ASSERT_EQ(stamps.size(), size_t(stats.framesWritten));
    for (size_t i = 1; i < stamps.size(); ++i) {
        EXPECT_GT(stamps[i].frameCounter, stamps[i - 1].frameCounter);
    }
    EXPECT_GE(std::int64_t(stamps.front().clockMs), startMs);
    EXPECT_LE(std::int64_t(stamps.back().clockMs), ran.toMs);

    // Plugged back in, the camera connects again.
    engine.engine->setDemoCameraPresent(3, true);
    leaving->SetConnected(true);
    EXPECT_TRUE(leaving->Connected());
}
#endif
