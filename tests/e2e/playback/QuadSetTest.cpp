#include "PlaybackE2e.h"

#include <algorithm>

#include <QCheckBox>
#include <QDir>
#include <QElapsedTimer>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

// The four-camera Set recorded from the demo cameras, open in the quad view.
class QuadSet : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(set.members.size(), 4) << "no recording to play";
        w.openVideo(w.copySet(set, 2));
        ASSERT_EQ(w.fixture.prompts.texts(), QStringList());
        w.waitShown();
    }

    void loop(bool on) { w.fixture.find<QCheckBox>("chkLoop")->setChecked(on); }
    double position() { return w.player(0).PlayerGetPos(); }
    std::vector<double> frames() {
        std::vector<double> all;
        for (int i = 0; i < 4; ++i) {
            all.push_back(w.player(i).PlayerGetFrame());
        }
        return all;
    }
    // The players show the frames they report, once they have landed where they were sent.
    ::testing::AssertionResult settled() {
        w.waitShown();
        return w.showTheirFrames(set);
    }
    // How far apart the frame counters on show were, sampled while playing.
    struct Spread {
        int samples = 0;
        int withinOneFrame = 0;
        int worst = 0;
    };
    // Plays on until done() holds, sampling the spread from the moment the players have shown
    // what they were last sent to.
    template <typename Done>
    Spread playUntil(Done done) {
        w.waitShown();
        Spread spread;
        const bool reached = QTest::qWaitFor(
            [&] {
                const int now = w.counterSpread();
                ++spread.samples;
                spread.withinOneFrame += now <= 1 ? 1 : 0;
                spread.worst = std::max(spread.worst, now);
                return done();
            },
            20000);
        EXPECT_TRUE(reached) << "at " << position() << " ms, " << w.fixture.panel(1).toStdString();
        return spread;
    }
    // Plays until the position has gone past `ms` and come back before it.
    Spread playUntilLoopedFrom(double ms) {
        double furthest = 0;
        return playUntil([&] {
            furthest = std::max(furthest, position());
            return furthest >= ms && position() < ms - 200;
        });
    }
    // Players started together stay together. A player kept off the processor by a busy machine
    // falls behind for a moment and catches up by the clock, while players that started apart
    // stay apart: so most samples, not all, are within a frame.
    static ::testing::AssertionResult inStep(const Spread& spread) {
        if (spread.withinOneFrame * 2 > spread.samples) {
            return ::testing::AssertionSuccess();
        }
        return ::testing::AssertionFailure()
               << "within a frame in " << spread.withinOneFrame << " of " << spread.samples
               << " samples, at worst " << spread.worst << " frames apart";
    }
    // Pauses and checks that the players stand within a frame of each other on the frames they
    // report.
    ::testing::AssertionResult pausedInStep() {
        w.fixture.click("Toolbar1_Play");
        w.waitShown();
        if (::testing::AssertionResult shown = w.showTheirFrames(set); !shown) {
            return shown;
        }
        if (const int spread = w.counterSpread(); spread > 1) {
            return ::testing::AssertionFailure() << "paused " << spread << " frames apart";
        }
        return ::testing::AssertionSuccess();
    }

    const RecordedSet& set = recordedSet();
    RealPlaybackWindow w;
};

TEST_F(QuadSet, PlaysPausesStepsAndRewindsTheMembersInStep) {
    for (int i = 0; i < 4; ++i) {
        EXPECT_LE(std::max(set.stamps[i][0].frameCounter, set.stamps[0][0].frameCounter) -
                      std::min(set.stamps[i][0].frameCounter, set.stamps[0][0].frameCounter),
                  1U)
            << "the members of a Set start together";
        EXPECT_TRUE(w.shown(QStringLiteral("picPlayer_%1").arg(i))) << i;
    }
    EXPECT_EQ(w.state().PlayerEnable, (std::array<bool, 4>{true, true, true, true}));
    EXPECT_EQ(w.fixture.panel(2), "rally(****).avi");
    EXPECT_EQ(w.fixture.panel(3), "Size:640x480, Fps:30");
    const double duration = w.player(0).PlayerGetDuration();
    EXPECT_EQ(w.slider().maximum(), qRound(duration / 100));
    EXPECT_TRUE(w.showTheirFrames(set)) << "each player on its first frame";

    w.fixture.click("Toolbar1_Play");
    EXPECT_TRUE(inStep(playUntil([&] { return position() >= 1000; })));
    EXPECT_NEAR(w.slider().value(), position() / 100, 2) << "the timeline follows";
    EXPECT_TRUE(pausedInStep());
    EXPECT_EQ(w.fixture.panel(1), "Video Paused");
    const std::vector<double> paused = frames();
    QTest::qWait(200);
    EXPECT_EQ(frames(), paused) << "a paused player stands still";

    // A step moves each player one frame from where it stands.
    w.fixture.click("Toolbar1_StepForward");
    EXPECT_TRUE(settled());
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(w.player(i).PlayerGetFrame(), paused[i] + 1) << i;
    }
    w.fixture.click("Toolbar1_StepBack");
    w.fixture.click("Toolbar1_StepBack");
    EXPECT_TRUE(settled());
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(w.player(i).PlayerGetFrame(), paused[i] - 1) << i;
    }
    EXPECT_EQ(w.fixture.panel(1), "Video Paused") << "steps leave the transport as it was";

    // Play on from there, then Rewind while playing.
    w.fixture.click("Toolbar1_Play");
    EXPECT_TRUE(inStep(playUntil([&] { return w.player(0).PlayerGetFrame() >= paused[0] + 6; })));
    w.fixture.click("Toolbar1_Rewind");
    EXPECT_TRUE(settled());
    EXPECT_EQ(frames(), std::vector<double>(4, 0.0));
    EXPECT_EQ(w.slider().value(), 0);
    EXPECT_EQ(w.fixture.panel(1), "Video Rewind");
    EXPECT_EQ(w.fixture.panel(5).left(13), "Position=.00/");
}

TEST_F(QuadSet, RegionAndFileEndsLoopOrStopAtAnySpeed) {
    // A Shift drag on the timeline from 0.5 s to 1.2 s, Shift held at the release.
    w.dragTimeline(5, 12, Qt::ShiftModifier, Qt::ShiftModifier);
    EXPECT_TRUE(w.state().RegionActive);
    EXPECT_EQ(w.slider().SelStart(), 5);
    EXPECT_EQ(w.slider().SelLength(), 7);
    ASSERT_TRUE(settled()) << "the drag seeks every player";
    EXPECT_NEAR(position(), 1200, 34);

    // At the region's end Play starts the region again, and the loop goes on.
    loop(true);
    w.fixture.click("Toolbar1_Play");
    playUntilLoopedFrom(1150);
    EXPECT_GE(position(), 500);
    EXPECT_TRUE(inStep(playUntil([&] { return position() >= 800; })))
        << "the players loop together";

    // Without the loop the players stop at the region's end.
    loop(false);
    playUntil([&] { return w.fixture.panel(1) == "Video Stopped"; });
    EXPECT_EQ(w.slider().value(), 12);
    ASSERT_TRUE(settled());
    EXPECT_LE(w.counterSpread(), 1);
    for (int i = 0; i < 4; ++i) {
        EXPECT_FALSE(w.player(i).IsPlaying()) << i;
        EXPECT_GE(w.player(i).PlayerGetPos(), 1150) << i;
        EXPECT_LT(w.player(i).PlayerGetPos(), 1500) << i;
    }

    // With the region cleared and at four times the speed, the loop runs over the file's end.
    w.rightPressTimeline();
    EXPECT_FALSE(w.state().RegionActive);
    w.chooseSpeed(0);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(w.real(i).PlayerGetRate(), 4.0) << i;
    }
    loop(true);
    const double duration = w.player(0).PlayerGetDuration();
    w.fixture.click("Toolbar1_Play");
    playUntilLoopedFrom(duration - 150);
    playUntil([&] { return position() >= 300; });
    EXPECT_TRUE(pausedInStep()) << "the players loop together";

    // Without the loop the end of the file rewinds them all to the region's start, here 0.
    loop(false);
    w.fixture.click("Toolbar1_Play");
    playUntil([&] { return w.fixture.panel(1) == "Video Rewind"; });
    ASSERT_TRUE(settled());
    EXPECT_EQ(frames(), std::vector<double>(4, 0.0));
    for (int i = 0; i < 4; ++i) {
        EXPECT_FALSE(w.player(i).IsPlaying()) << i;
    }

    // A quarter of the speed: never more than a quarter of the time passes in the file.
    w.chooseSpeed(4);
    QElapsedTimer watch;
    watch.start();
    w.fixture.click("Toolbar1_Play");
    EXPECT_TRUE(QTest::qWaitFor([&] { return position() >= 100; }, 20000));
    const double advanced = position();
    const double allowed = static_cast<double>(watch.elapsed()) / 4 + 34;
    EXPECT_LE(advanced, allowed);
    EXPECT_TRUE(pausedInStep());
}

TEST_F(QuadSet, StillsOfThePausedSetOpenAgainAsAnImageSet) {
    for (int step = 0; step < 5; ++step) {
        w.fixture.click("Toolbar1_StepForward");
    }
    w.waitShown();
    w.fixture.click("mnuCaptureSet");
    EXPECT_EQ(w.fixture.prompts.texts(), QStringList{"Save Image Set complete"});

    const QStringList stills =
        QDir(w.images(QString())).entryList({"rally(Cam*)-*.jpg"}, QDir::Files, QDir::Name);
    ASSERT_EQ(stills.size(), 4) << stills.join(' ').toStdString();
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(media::readDemoStamp(QImage(w.images(stills[i]))), set.stamps[i][5])
            << "each still holds the frame its player showed";
    }

    w.openImage(w.images(stills[3]));
    EXPECT_EQ(w.state().CurrentState, "LoadImageFile");
    EXPECT_EQ(w.state().PlayerView, "QuadPlayer");
    EXPECT_EQ(w.state().PlayerEnable, (std::array<bool, 4>{true, true, true, true}));
    EXPECT_EQ(w.fixture.panel(1), "Image View");
    EXPECT_EQ(w.fixture.panel(2), "rally(****)" + stills[3].mid(11));
    w.waitShown();
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(w.stampOnShow(i), set.stamps[i][5]) << i;
        EXPECT_EQ(w.player(i).PlayerGetSize(), QSize(640, 480));
    }
}

} // namespace
} // namespace ravelcue::test
