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

// Playback follows the clock at every rate, goes on from a new place, stops where it is, and
// reports the end once; a seek after the end plays on, as a loop does.
TEST(PlayerPlayback, FollowsTheClockAtEveryRateAndReportsTheEnd) {
    TempFolder folder;
    auto clock = std::make_shared<ManualClock>();
    FfmpegPlayer player(clock);
    QSignalSpy ends(&player, &FfmpegPlayer::PlayerEnd);
    ASSERT_TRUE(player.PlayerOpen(makeClip(folder)).ok());

    player.PlayerPlay();
    player.PlayerStop();
    EXPECT_EQ(player.PlayerGetFrame(), 0.0); // play then stop shows the first frame

    player.PlayerPlay();
    clock->advanceMs(200);
    EXPECT_TRUE(waitForFrameNumber(player, 5));
    player.PlayerSetRate(4.0);
    clock->advanceMs(100); // 400 ms of video
    EXPECT_TRUE(waitForFrameNumber(player, 15));
    player.PlayerSetRate(0.25);
    clock->advanceMs(400); // 100 ms of video
    EXPECT_TRUE(waitForFrameNumber(player, 17));
    player.PlayerSetRate(10.0);
    EXPECT_EQ(player.PlayerGetRate(), 4.0);
    player.PlayerSetRate(1.0);

    player.PlayerStop();
    clock->advanceMs(500);
    QTest::qWait(30);
    EXPECT_EQ(player.PlayerGetFrame(), 17.0);
    EXPECT_FALSE(player.IsPlaying());

    player.PlayerSetFrame(40);
    player.PlayerPlay();
    clock->advanceMs(120);
    EXPECT_TRUE(waitForFrameNumber(player, 43));

    clock->advanceMs(1000);
    EXPECT_TRUE(QTest::qWaitFor([&] { return ends.count() == 1; }, 30000));
    EXPECT_EQ(player.PlayerGetFrame(), 49.0);
    clock->advanceMs(500);
    QTest::qWait(30);
    EXPECT_EQ(ends.count(), 1);

    player.PlayerSetPos(0); // still playing: goes on from the start
    ASSERT_TRUE(player.waitForFrame());
    clock->advanceMs(80);
    EXPECT_TRUE(waitForFrameNumber(player, 2));
}

// What keeps the players of a Set together: a pause lands on the frame due at the call and
// reports it at once, a seek while playing counts from the call, not from whenever its frame was
// ready, and a seek overtakes an end not yet delivered.
TEST(PlayerPlayback, PausesSeeksAndEndsKeepASetTogether) {
    TempFolder folder;
    auto clock = std::make_shared<ManualClock>();
    FfmpegPlayer player(clock);
    ASSERT_TRUE(player.PlayerOpen(makeClip(folder)).ok());

    player.PlayerPlay();
    clock->advanceMs(40);
    EXPECT_TRUE(waitForFrameNumber(player, 1));
    clock->advanceMs(160);
    player.PlayerStop();
    EXPECT_EQ(player.PlayerGetFrame(), 5.0);
    ASSERT_TRUE(player.waitForFrame());
    EXPECT_EQ(player.PlayerGetFrame(), 5.0);

    player.PlayerPlay();
    clock->advanceMs(40);
    EXPECT_TRUE(waitForFrameNumber(player, 6));
    player.PlayerSetFrame(30);
    clock->advanceMs(120);
    EXPECT_TRUE(waitForFrameNumber(player, 33));

    // An end that a seek overtook before it was delivered is not reported: in a Set the first
    // member's end sends them all back, and the ends of the others are old news by then.
    QSignalSpy ends(&player, &FfmpegPlayer::PlayerEnd);
    clock->advanceMs(1000);
    for (int wait = 0; wait < 3000 && player.PlayerGetFrame() != 49.0; ++wait) {
        QThread::msleep(1); // no events: the end stays undelivered
    }
    ASSERT_EQ(player.PlayerGetFrame(), 49.0);
    QThread::msleep(50);
    player.PlayerSetPos(0);
    QTest::qWait(50);
    EXPECT_EQ(ends.count(), 0);
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
    EXPECT_FALSE(player.PlayerSaveFrame(folder.file("none.jpg"), 90));

    ASSERT_TRUE(player.PlayerOpen(makeClip(folder)).ok());
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

// Damaged files end in an error the user can be shown, never in a crash; a file cut short
// plays what it holds.
TEST(PlayerPlayback, DamagedFilesOpenWithAnErrorOrPlayWhatTheyHold) {
    TempFolder folder;
    FfmpegPlayer player;

    const auto missing = player.PlayerOpen(folder.file("missing.avi"));
    EXPECT_EQ(missing.number, ravelcue::media::media_error::FileNotFound);

    QFile noise(folder.file("noise.avi"));
    ASSERT_TRUE(noise.open(QIODevice::WriteOnly));
    for (int i = 0; i < 4096; ++i) {
        noise.putChar(static_cast<char>((i * 7919) % 251));
    }
    noise.close();
    const auto garbage = player.PlayerOpen(noise.fileName());
    EXPECT_FALSE(garbage.ok());
    EXPECT_FALSE(garbage.text.isEmpty());
    EXPECT_FALSE(player.IsOpen());

    // An MP4 whose index (written at the end) is cut off.
    const QString mp4 = folder.file("cut.mp4");
    ASSERT_TRUE(makeVideo(mp4, "testsrc2=size=176x100:rate=25:duration=2", {"-c:v", "libx264"}));
    QFile cutMp4(mp4);
    ASSERT_TRUE(cutMp4.resize(cutMp4.size() / 2));
    EXPECT_FALSE(player.PlayerOpen(mp4).ok());

    // An AVI cut in the middle keeps the frames before the cut.
    const QString avi = makeClip(folder);
    QFile cutAvi(avi);
    ASSERT_TRUE(cutAvi.resize(cutAvi.size() / 2));
    ASSERT_TRUE(player.PlayerOpen(avi).ok());
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
