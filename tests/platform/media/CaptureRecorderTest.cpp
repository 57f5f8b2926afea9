#include "platform/media/ffmpeg/CaptureRecorder.h"

#include "platform/media/demo/DemoStamp.h"
#include "support/Ffprobe.h"
#include "support/TempFolder.h"

#include <cmath>
#include <thread>

#include <gtest/gtest.h>

using namespace ravelcue::media;
using namespace ravelcue::media::ffmpeg;
using namespace std::chrono_literals;

namespace {

// Ten frames a second: a slot is 100 ms, far more than the moment between two lines of a test.
constexpr auto kSlot = 100ms;

QImage numbered(std::uint32_t n) {
    QImage image(320, 240, QImage::Format_RGB32);
    image.fill(Qt::darkGray);
    drawDemoStampBand(image, n, 0);
    return image;
}

std::vector<std::uint32_t> countersIn(const QString& path) {
    std::vector<std::uint32_t> counters;
    ravelcue::test::forEachFrame(path, QSize(320, 240), [&](int, const QImage& frame) {
        counters.push_back(readDemoStamp(frame).frameCounter);
    });
    return counters;
}

std::unique_ptr<CaptureRecorder> startRecorder(const QString& path) {
    MediaError error;
    return CaptureRecorder::start({path, 320, 240, {10, 1}, VideoCodec::Ffv1}, {}, error);
}

} // namespace

TEST(CaptureRecorder, FramesTakeTheSlotsOfTheirCaptureTimes) {
    ravelcue::test::TempFolder folder;
    const QString path = folder.file("slots.mkv");
    auto recorder = startRecorder(path);
    ASSERT_TRUE(recorder);
    const auto t0 = CaptureClock::now();
    std::this_thread::sleep_for(5 * kSlot);
    recorder->offer(numbered(0), t0);
    recorder->offer(numbered(1), t0 + kSlot);
    // Slot 2 never came; the camera ran fast and sent a second picture in slot 3.
    recorder->offer(numbered(3), t0 + 3 * kSlot);
    recorder->offer(numbered(33), t0 + 3 * kSlot + 20ms);
    recorder->pause();
    // Taken before the pause, handed over after it: still part of the recording.
    recorder->offer(numbered(4), t0 + 4 * kSlot);
    const auto paused = CaptureClock::now();
    std::this_thread::sleep_for(2 * kSlot);
    recorder->resume();
    const auto resumed = CaptureClock::now();
    // Taken while held: not recorded, whenever it arrives.
    recorder->offer(numbered(50), paused + kSlot);
    std::this_thread::sleep_for(3 * kSlot);
    // The first picture after the release was lost: the next one keeps its own slot, so the
    // file stays in step with the others of its set.
    recorder->offer(numbered(6), resumed + kSlot + kSlot / 2);
    recorder->offer(numbered(7), resumed + 2 * kSlot + kSlot / 2);
    const CaptureStats running = recorder->stats();
    ASSERT_TRUE(recorder->stop().ok());
    EXPECT_FALSE(recorder->isRecording());
    recorder->offer(numbered(9), CaptureClock::now());

    const CaptureStats stats = recorder->stats();
    EXPECT_EQ(stats.framesWritten, 6);
    EXPECT_EQ(stats.framesDropped, 2);
    EXPECT_GE(running.elapsedMs, 5 * 100 + 3 * 100);
    EXPECT_EQ(countersIn(path), (std::vector<std::uint32_t>{0, 1, 3, 4, 6, 7}));
    std::vector<long> times; // in milliseconds, to the nearest 2
    for (const double seconds : ravelcue::test::framePtsSeconds(path)) {
        times.push_back(std::lround(seconds * 500) * 2);
    }
    EXPECT_EQ(times, (std::vector<long>{0, 100, 300, 400, 600, 700}));
}

TEST(CaptureRecorder, AStartHeldAtOnceRecordsNothingBeforeTheRelease) {
    ravelcue::test::TempFolder folder;
    const QString path = folder.file("held.mkv");
    auto recorder = startRecorder(path);
    ASSERT_TRUE(recorder);
    const auto between = CaptureClock::now();
    recorder->pause();
    std::this_thread::sleep_for(kSlot);
    // A picture taken in the moment between start and hold, handed over late.
    recorder->offer(numbered(1), between);
    recorder->resume();
    const auto released = CaptureClock::now();
    std::this_thread::sleep_for(2 * kSlot);
    recorder->offer(numbered(2), released + kSlot / 2);
    recorder->offer(numbered(3), released + kSlot / 2 + kSlot);
    ASSERT_TRUE(recorder->stop().ok());
    EXPECT_EQ(recorder->stats().framesWritten, 2);
    EXPECT_EQ(recorder->stats().framesDropped, 0);
    EXPECT_EQ(countersIn(path), (std::vector<std::uint32_t>{2, 3}));
}
