#include "PlayerTestSupport.h"
#include "support/MediaFiles.h"
#include "support/TempFolder.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <gtest/gtest.h>

using ravelcue::media::ffmpeg::FfmpegPlayer;
using namespace ravelcue::test;

namespace {

// 50 frames of 40 ms.
QString makeClip(const TempFolder& folder) {
    const QString path = folder.file(QStringLiteral("clip.avi"));
    makeVideo(path, QStringLiteral("testsrc2=size=176x100:rate=25:duration=2"), {"-c:v", "mjpeg"});
    return path;
}

// Playback follows the clock at every rate and goes on from a new place. What keeps the players
// of a Set together: a pause lands on the frame due at the call and reports it at once, the end
// is reported once, and a seek overtakes an end not yet delivered; a seek after the end plays
// on, as a loop does.
TEST(PlayerPlayback, FollowsTheClockAndKeepsASetTogether) {
    TempFolder folder;
    auto clock = std::make_shared<ManualClock>();
    FfmpegPlayer player(clock);
    QSignalSpy ends(&player, &FfmpegPlayer::PlayerEnd);
    ASSERT_TRUE(player.PlayerOpen(makeClip(folder)).ok());

    player.PlayerPlay();
    player.PlayerStop();
    EXPECT_EQ(player.PlayerGetFrame(), 0.0); // play then stop shows the first frame

    player.PlayerPlay();
    clock->advanceMs(40);
    EXPECT_TRUE(waitForFrameNumber(player, 1));
    clock->advanceMs(160);
    player.PlayerStop();
    EXPECT_EQ(player.PlayerGetFrame(), 5.0);
    ASSERT_TRUE(player.waitForFrame());
    clock->advanceMs(500);
    QTest::qWait(30);
    EXPECT_EQ(player.PlayerGetFrame(), 5.0);
    EXPECT_FALSE(player.IsPlaying());

    player.PlayerSetFrame(30);
    player.PlayerPlay();
    clock->advanceMs(40);
    EXPECT_TRUE(waitForFrameNumber(player, 31));
    player.PlayerSetRate(4.0);
    clock->advanceMs(100); // 400 ms of video
    EXPECT_TRUE(waitForFrameNumber(player, 41));
    player.PlayerSetRate(0.25);
    clock->advanceMs(400); // 100 ms of video
    EXPECT_TRUE(waitForFrameNumber(player, 43));
    player.PlayerSetRate(10.0);
    EXPECT_EQ(player.PlayerGetRate(), 4.0);
    player.PlayerSetRate(1.0);

    player.PlayerSetFrame(10); // while playing: counts from the call
    clock->advanceMs(120);
    EXPECT_TRUE(waitForFrameNumber(player, 13));

    clock->advanceMs(2000);
    EXPECT_TRUE(QTest::qWaitFor([&] { return ends.count() == 1; }, 30000));
    EXPECT_EQ(player.PlayerGetFrame(), 49.0);
    clock->advanceMs(500);
    QTest::qWait(30);
    EXPECT_EQ(ends.count(), 1);

    player.PlayerSetPos(0); // still playing: goes on from the start
    ASSERT_TRUE(player.waitForFrame());
    clock->advanceMs(80);
    EXPECT_TRUE(waitForFrameNumber(player, 2));

    // An end that a seek overtook before it was delivered is not reported: in a Set the first
    // member's end sends them all back, and the ends of the others are old news by then.
    clock->advanceMs(2000);
    for (int wait = 0; wait < 3000 && player.PlayerGetFrame() != 49.0; ++wait) {
        QThread::msleep(1); // no events: the end stays undelivered
    }
    ASSERT_EQ(player.PlayerGetFrame(), 49.0);
    QThread::msleep(50);
    player.PlayerSetPos(0);
    QTest::qWait(50);
    EXPECT_EQ(ends.count(), 1);
}

// A playback clock that can hold the worker in its sleep between frames, as a worker slow to
// come round to a command is held; nothing else it is told wakes it then.
class HeldClock final : public ravelcue::media::ffmpeg::PlaybackClock {
public:
    Duration now() const override { return Duration(std::chrono::seconds(1)); }
    void waitUntil(std::unique_lock<std::mutex>& lock, std::condition_variable& wake,
                   Duration) override {
        std::unique_lock held(mutex_);
        if (!holding_) {
            held.unlock();
            wake.wait_for(lock, std::chrono::milliseconds(1));
            return;
        }
        lock.unlock();
        ++sleepers_;
        release_.wait(held, [this] { return !holding_; });
        held.unlock();
        lock.lock();
    }
    void release() {
        {
            std::lock_guard held(mutex_);
            holding_ = false;
        }
        release_.notify_all();
    }
    int sleepers() {
        std::lock_guard held(mutex_);
        return sleepers_;
    }

private:
    std::mutex mutex_;
    std::condition_variable release_;
    bool holding_ = true;
    int sleepers_ = 0;
};

// A pause that has not landed yet is told apart before anyone waits on the position, and the
// position is there the moment the player says it answers.
TEST(PlayerPlayback, APlayerStillLandingAPauseDoesNotAnswer) {
    using std::chrono::milliseconds;
    TempFolder folder;
    auto clock = std::make_shared<HeldClock>();
    FfmpegPlayer player(clock);
    const std::unique_ptr<HeldClock, void (*)(HeldClock*)> releasedAtTheEnd(
        clock.get(), [](HeldClock* held) { held->release(); }); // before the player closes
    EXPECT_TRUE(player.PlayerAnswers(milliseconds(0))) << "with no file";
    ASSERT_TRUE(player.PlayerOpen(makeClip(folder)).ok());
    EXPECT_TRUE(player.PlayerAnswers(milliseconds(0))) << "standing still";

    player.PlayerPlay();
    ASSERT_TRUE(QTest::qWaitFor([&] { return clock->sleepers() == 1; }, 30000));
    EXPECT_TRUE(player.PlayerAnswers(milliseconds(0))) << "playing";
    player.PlayerStop();
    EXPECT_FALSE(player.PlayerAnswers(milliseconds(0)));
    EXPECT_FALSE(player.PlayerAnswers(milliseconds(40)));

    clock->release();
    EXPECT_TRUE(player.PlayerAnswers(milliseconds(30000)));
    EXPECT_EQ(player.PlayerGetFrame(), 0.0);
    player.PlayerClose();
    EXPECT_TRUE(player.PlayerAnswers(milliseconds(0)));
}

// Nothing a caller does to a closed player, or with positions outside the file, fails.
TEST(PlayerPlayback, ClosedPlayersAndPositionsOutsideTheFileAreHarmless) {
    TempFolder folder;
    FfmpegPlayer player;
    player.PlayerPlay();
    player.PlayerSetPos(500);
    player.PlayerSetFrame(-1);
    player.PlayerStop();
    EXPECT_EQ(player.PlayerGetPos(), 0.0);
    EXPECT_EQ(player.PlayerGetFrameCount(), 0);
    EXPECT_FALSE(player.PlayerSaveFrame(folder.file("none.jpg"), 90).ok());

    ASSERT_TRUE(player.PlayerOpen(makeClip(folder)).ok());
    ASSERT_TRUE(player.waitForLength());
    const ravelcue::media::MediaError unwritable =
        player.PlayerSaveFrame(folder.file("none/none.jpg"), 90);
    EXPECT_EQ(unwritable.number, ravelcue::media::media_error::WriteFailed);
    EXPECT_FALSE(unwritable.text.isEmpty()) << "the cause goes to the user";
    player.PlayerSetFrame(-1);
    EXPECT_EQ(player.PlayerGetFrame(), 0.0);
    player.PlayerSetPos(-100);
    EXPECT_EQ(player.PlayerGetPos(), 0.0);
    player.PlayerSetFrame(1e12);
    EXPECT_EQ(player.PlayerGetFrame(), 49.0);
    player.PlayerSetPos(1e9);
    EXPECT_EQ(player.PlayerGetFrame(), 49.0);
    EXPECT_DOUBLE_EQ(player.PlayerGetPos(), 1960.0);
    EXPECT_DOUBLE_EQ(player.PlayerGetDuration(), 2000.0);
    player.PlayerClose();
    EXPECT_FALSE(player.IsOpen());
    player.PlayerSetPos(player.PlayerGetPos() + 1);
}

// A missing file ends in an error the user can be shown; a file cut short plays what it holds.
// (Noise and a cut MP4 are opened through the window in the playback tests.)
TEST(PlayerPlayback, MissingFilesSayWhyAndCutFilesPlayWhatTheyHold) {
    TempFolder folder;
    FfmpegPlayer player;
    EXPECT_EQ(player.PlayerOpen(folder.file("missing.avi")).number,
              ravelcue::media::media_error::FileNotFound);
    EXPECT_FALSE(player.IsOpen());

    const QString avi = makeClip(folder);
    QFile cutAvi(avi);
    ASSERT_TRUE(cutAvi.resize(cutAvi.size() / 2));
    ASSERT_TRUE(player.PlayerOpen(avi).ok());
    ASSERT_TRUE(player.waitForLength());
    const int frames = player.PlayerGetFrameCount();
    EXPECT_GT(frames, 10);
    EXPECT_LT(frames, 50);
    ASSERT_TRUE(showFrame(player, frames - 1));
    EXPECT_EQ(player.PlayerGetFrame(), frames - 1);
    EXPECT_FALSE(player.pictureOnShow().isNull());
}

// Seeks that overtake each other (a dragged slider) cut the decoding of the one before short;
// the last one lands exactly, and the decoder goes on correctly from wherever it stopped.
TEST(PlayerPlayback, SeeksThatOvertakeEachOtherLandOnTheLast) {
    TempFolder folder;
    const QString path = folder.file("long-gop.mp4");
    ASSERT_TRUE(makeVideo(path, "testsrc2=size=176x100:rate=25:duration=10",
                          {"-c:v", "libx264", "-g", "250", "-bf", "3", "-pix_fmt", "yuv420p"}));
    const std::vector<int> checked = {121, 122, 200, 199};
    const std::vector<QImage> expected = extractFrames(path, checked);
    ASSERT_EQ(expected.size(), checked.size());
    FfmpegPlayer player;
    ASSERT_TRUE(player.PlayerOpen(path).ok());
    for (const int frame : {240, 120, 230, 60, 121}) {
        player.PlayerSetFrame(frame);
        QTest::qWait(3); // lets the worker start on it before the next one comes
    }
    ASSERT_TRUE(player.waitForFrame());
    EXPECT_EQ(player.PlayerGetFrame(), 121.0);
    EXPECT_LT(meanDifference(player.pictureOnShow(), expected[0]), 0.5);
    for (size_t i = 1; i < checked.size(); ++i) {
        player.PlayerSetFrame(180); // cut short by the next
        QTest::qWait(3);
        ASSERT_TRUE(showFrame(player, checked[i]));
        EXPECT_LT(meanDifference(player.pictureOnShow(), expected[i]), 0.5) << checked[i];
    }
}

// Still pictures open as one frame that never ends.
TEST(PlayerPlayback, StillsOpenAsOneFrameThatNeverEnds) {
    TempFolder folder;
    FfmpegPlayer player;
    QSignalSpy ends(&player, &FfmpegPlayer::PlayerEnd);
    for (const char* name : {"photo.jpg", "photo.png", "photo.bmp"}) {
        SCOPED_TRACE(name);
        const QString path = folder.file(QString::fromLatin1(name));
        ASSERT_TRUE(makeVideo(path, "testsrc2=size=200x150", {"-frames:v", "1"}));
        const auto opened = player.PlayerOpen(path);
        ASSERT_TRUE(opened.ok()) << opened.text.toStdString();
        EXPECT_EQ(player.PlayerGetFrameCount(), 1);
        EXPECT_EQ(player.PlayerGetSize(), QSize(200, 150));
        player.PlayerPlay();
        player.PlayerStop();
        ASSERT_TRUE(player.waitForFrame());
        EXPECT_LT(meanDifference(player.pictureOnShow(), extractFrame(path, 0)), 0.5);
    }
    QTest::qWait(50);
    EXPECT_EQ(ends.count(), 0);
}

} // namespace
