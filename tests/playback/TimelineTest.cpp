#include "PlaybackWindow.h"
#include "support/RecordingEngine.h"

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

// One video of 12.34 s in the single view: the timeline has steps 0 to 123.
class Timeline : public ::testing::Test {
protected:
    Timeline() {
        w.openVideo(w.touch(w.videos("clip.avi")));
        w.fixture.recorder.clearLog();
    }
    QStringList seeks() { return w.fixture.recorder.log().filter("PlayerSetPos"); }

    PlaybackWindow w;
};

TEST_F(Timeline, ShiftDragDrawsTheRegionAndSeeksAndShiftAtTheReleasePutsItInForce) {
    w.slider().moveThumb(30);
    w.dragTimeline(30, 60, Qt::ShiftModifier, Qt::ShiftModifier);
    EXPECT_EQ(w.slider().SelStart(), 30);
    EXPECT_EQ(w.slider().SelLength(), 30);
    EXPECT_TRUE(w.state().RegionActive);
    EXPECT_TRUE(w.slider().regionInForce());
    EXPECT_EQ(seeks().constLast(), "player0.PlayerSetPos(6000)") << "the player follows the thumb";
    EXPECT_EQ(w.slider().Text(), "6.00");
    EXPECT_EQ(w.fixture.panel(5), "Position=6.00/12.34");

    // A plain drag moves the position and leaves the region alone.
    w.dragTimeline(60, 90, Qt::NoModifier, Qt::NoModifier);
    EXPECT_EQ(w.slider().value(), 90);
    EXPECT_EQ(w.slider().SelStart(), 30);
    EXPECT_EQ(w.slider().SelLength(), 30);
    EXPECT_TRUE(w.state().RegionActive);

    // Drawn anew with Shift let go first: shown, not obeyed.
    w.dragTimeline(20, 40, Qt::ShiftModifier, Qt::NoModifier);
    EXPECT_EQ(w.slider().SelStart(), 20);
    EXPECT_EQ(w.slider().SelLength(), 20);
    EXPECT_TRUE(w.state().RegionActive) << "a region in force stays so while one is drawn";
    w.rightPressTimeline();
    EXPECT_EQ(w.slider().SelLength(), 0);
    EXPECT_FALSE(w.state().RegionActive);
    w.dragTimeline(20, 40, Qt::ShiftModifier, Qt::NoModifier);
    EXPECT_EQ(w.slider().SelLength(), 20);
    EXPECT_FALSE(w.state().RegionActive);
    EXPECT_FALSE(w.slider().regionInForce());
}

TEST_F(Timeline, TheFirstStepNeitherSeeksNorStartsARegion) {
    w.slider().moveThumb(50);
    w.dragTimeline(50, 0, Qt::NoModifier, Qt::NoModifier);
    EXPECT_EQ(w.slider().value(), 0);
    // The players stay where the thumb last sent them, on the way down; Rewind goes to 0.
    EXPECT_EQ(seeks().constLast(), "player0.PlayerSetPos(2500)");
    EXPECT_EQ(w.fixture.panel(5), "Position=2.50/12.34");

    w.dragTimeline(0, 40, Qt::ShiftModifier, Qt::ShiftModifier);
    EXPECT_EQ(w.slider().SelLength(), 0);
    EXPECT_FALSE(w.state().RegionActive);

    // Code that moves the thumb, as every tick does, sends no seek.
    w.fixture.recorder.clearLog();
    w.slider().moveThumb(70);
    w.fixture.find<QAction>("Toolbar1_Play")->trigger();
    w.player(0).PlayerSetPos(8000);
    w.fixture.recorder.clearLog();
    w.fixture.tick("tmrSlider");
    EXPECT_EQ(w.slider().value(), 80);
    EXPECT_TRUE(seeks().isEmpty());
}

TEST_F(Timeline, OpeningAnotherFileClearsTheRegion) {
    w.slider().moveThumb(10);
    w.dragTimeline(10, 20, Qt::ShiftModifier, Qt::ShiftModifier);
    ASSERT_TRUE(w.state().RegionActive);
    w.fixture.recorder.clearLog();
    w.fixture.recorder.playerBehaviour()->defaultFile.durationMs = 40;
    w.openVideo(w.touch(w.videos("tiny.avi")));
    EXPECT_FALSE(w.state().RegionActive);
    EXPECT_EQ(w.slider().SelStart(), 0);
    EXPECT_EQ(w.slider().SelLength(), 0);
    EXPECT_EQ(w.slider().maximum(), 0) << "shorter than half a step";
    EXPECT_TRUE(seeks().isEmpty()) << "the open moved the thumb without seeking";
}

// A video whose header gives 12.34 s but holds 8.76 s: the timeline, a region drawn to its end and
// the status follow the count when the player has it. A count of a longer file leaves the region.
TEST(TimelineLength, TakesTheCountedLengthWhenThePlayerHasIt) {
    PlaybackWindow w;
    RecordingEngine::MediaFile& file = w.fixture.recorder.playerBehaviour()->defaultFile;
    file.countedDurationMs = 8760;
    file.countedFrameCount = 263;
    w.openVideo(w.touch(w.videos("cut.avi")));
    ASSERT_EQ(w.slider().maximum(), 123);
    w.dragTimeline(100, 123, Qt::ShiftModifier, Qt::ShiftModifier);
    ASSERT_EQ(w.slider().SelStart(), 100);
    ASSERT_EQ(w.slider().SelLength(), 23);

    emit w.player(0).lengthKnown();
    EXPECT_EQ(w.slider().maximum(), 88);
    EXPECT_EQ(w.slider().SelStart(), 88);
    EXPECT_EQ(w.slider().SelLength(), 0);
    EXPECT_EQ(w.fixture.panel(3), "Size:640x480, Fps:30");
    EXPECT_TRUE(w.fixture.panel(5).endsWith("/8.76")) << w.fixture.panel(5).toStdString();

    file.countedDurationMs = 20000;
    file.countedFrameCount = 600;
    w.openVideo(w.videos("cut.avi"));
    w.dragTimeline(20, 123, Qt::ShiftModifier, Qt::ShiftModifier);
    emit w.player(0).lengthKnown();
    EXPECT_EQ(w.slider().maximum(), 200);
    EXPECT_EQ(w.slider().SelStart(), 20);
    EXPECT_EQ(w.slider().SelLength(), 103);
    // Another player's count is not the timeline's.
    emit w.player(1).lengthKnown();
    EXPECT_EQ(w.slider().maximum(), 200);
}

} // namespace
} // namespace ravelcue::test
