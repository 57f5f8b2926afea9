#include "PlaybackWindow.h"

#include <QCheckBox>
#include <QListWidget>
#include <QScrollBar>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

// A Set of all four cameras, open in the quad view.
class Transport : public ::testing::Test {
protected:
    Transport() {
        for (int i = 1; i <= 4; ++i) {
            w.touch(w.videos(QStringLiteral("run(Cam%1).avi").arg(i)));
        }
        w.openVideo(w.videos("run(Cam2).avi"));
        w.fixture.recorder.clearLog();
    }

    QStringList calls(const QString& what) { return w.fixture.recorder.log().filter(what); }
    QStringList toAll(const QString& call) {
        QStringList all;
        for (int i = 0; i < 4; ++i) {
            all << QStringLiteral("player%1.%2").arg(i).arg(call);
        }
        return all;
    }
    QTimer* timer() { return w.fixture.window().findChild<QTimer*>("tmrSlider"); }
    // On the test clock the timer would tick every 2 ms; it stays on but the test ticks it.
    void holdTimer() {
        ASSERT_TRUE(timer()->isActive());
        timer()->start(3600 * 1000);
    }
    void setRegion(int selStart, int selLength) {
        w.slider().setSelection(selStart, selLength);
        w.state().RegionActive = true;
    }
    void loop(bool on) { w.fixture.find<QCheckBox>("chkLoop")->setChecked(on); }
    void allAt(double ms) {
        for (int i = 0; i < 4; ++i) {
            w.player(i).PlayerSetPos(ms);
        }
        w.fixture.recorder.clearLog();
    }

    PlaybackWindow w;
};

TEST_F(Transport, PlayPauseAndStopReachEveryMemberAndKeepThePosition) {
    w.fixture.click("Toolbar1_Play");
    EXPECT_EQ(w.fixture.recorder.log(), toAll("PlayerPlay()")) << "nothing between the starts";
    EXPECT_TRUE(timer()->isActive());
    EXPECT_EQ(w.playTip(), "Pause Video (Space)");
    EXPECT_EQ(w.fixture.find<QAction>("Toolbar1_Play")->property("image"), "Pause");
    EXPECT_EQ(w.fixture.panel(1), "Video Play");

    w.player(0).PlayerSetPos(2040);
    w.fixture.tick("tmrSlider");
    EXPECT_EQ(w.slider().value(), 20);
    EXPECT_EQ(w.fixture.panel(5), "Position=2.04/12.34");

    w.fixture.recorder.clearLog();
    w.fixture.click("Toolbar1_Play");
    EXPECT_EQ(w.fixture.recorder.log(), toAll("PlayerStop()"));
    EXPECT_FALSE(timer()->isActive());
    EXPECT_EQ(w.playTip(), "Play Video (Space)");
    EXPECT_EQ(w.fixture.panel(1), "Video Paused");

    w.fixture.click("Toolbar1_Play");
    EXPECT_TRUE(calls("SetPos").isEmpty()) << "play goes on where pause left off";
    w.fixture.click("Toolbar1_Stop");
    EXPECT_EQ(w.fixture.panel(1), "Video Stopped");
    EXPECT_EQ(w.playTip(), "Play Video (Space)");
    EXPECT_TRUE(calls("SetFrame").isEmpty()) << "stop does not rewind";
    EXPECT_EQ(w.player(0).PlayerGetPos(), 2040);
}

// Dragging the thumb while the file plays: each tick would snap it back to the player's place.
TEST_F(Transport, TheTimerLeavesAThumbTheUserHolds) {
    w.fixture.click("Toolbar1_Play");
    holdTimer();
    w.slider().setSliderDown(true);
    w.slider().setSliderPosition(70);
    allAt(3040);
    w.fixture.tick("tmrSlider");
    EXPECT_EQ(w.slider().value(), 70);
    w.slider().setSliderDown(false);
    allAt(3040);
    w.fixture.tick("tmrSlider");
    EXPECT_EQ(w.slider().value(), 30) << "let go, it follows the player again";
}

TEST_F(Transport, StepsMoveEachPlayerFromWhereItStands) {
    w.player(1).PlayerSetFrame(10);
    w.fixture.recorder.clearLog();
    w.fixture.click("Toolbar1_StepForward");
    EXPECT_EQ(calls("SetFrame"),
              (QStringList{"player0.PlayerSetFrame(1)", "player1.PlayerSetFrame(11)",
                           "player2.PlayerSetFrame(1)", "player3.PlayerSetFrame(1)"}));
    EXPECT_EQ(w.player(1).PlayerGetFrame(), 11);
    EXPECT_EQ(w.fixture.panel(5), "Position=.03/12.34");

    w.fixture.recorder.clearLog();
    w.fixture.click("Toolbar1_StepBack");
    w.fixture.click("Toolbar1_StepBack");
    EXPECT_EQ(calls("player0.PlayerSetFrame"),
              (QStringList{"player0.PlayerSetFrame(0)", "player0.PlayerSetFrame(-1)"}))
        << "a step before the start is the player's to bound";
    EXPECT_EQ(w.player(1).PlayerGetFrame(), 9);
    EXPECT_TRUE(calls("PlayerStop").isEmpty()) << "steps leave the transport as it is";

    // Windows Media files step by 100 ms; files of unknown type do not step.
    w.openVideo(w.touch(w.videos("old.wmv")));
    w.player(0).PlayerSetPos(500);
    w.fixture.recorder.clearLog();
    w.fixture.click("Toolbar1_StepForward");
    EXPECT_EQ(calls("player0.PlayerSet"), QStringList{"player0.PlayerSetPos(600)"});
    EXPECT_EQ(w.slider().value(), 6);
    w.state().LoadedFileType = "img";
    w.fixture.recorder.clearLog();
    w.fixture.click("Toolbar1_StepForward");
    EXPECT_TRUE(calls("PlayerSet").isEmpty());
}

TEST_F(Transport, APlayerThatDoesNotAnswerIsNamedBusyAndHoldsNothingUp) {
    QList<int>& busy = w.fixture.recorder.playerBehaviour()->busy;
    w.fixture.click("Toolbar1_Play");
    holdTimer();
    allAt(2040);
    w.fixture.tick("tmrSlider");
    ASSERT_EQ(w.slider().value(), 20);

    // The index player is still landing a pause: thumb and position stay, the status says why.
    busy = {0};
    allAt(5000);
    w.fixture.tick("tmrSlider");
    EXPECT_EQ(w.slider().value(), 20);
    EXPECT_EQ(w.fixture.panel(5), "Position=2.04/12.34");
    EXPECT_EQ(w.fixture.panel(4), "Player 1 busy");
    w.fixture.click("Toolbar1_Play");
    EXPECT_EQ(w.fixture.panel(1), "Video Paused") << "the transport itself never waits";
    EXPECT_TRUE(calls("while busy").isEmpty()) << "the window waited on a busy player";

    // A step moves no player while any of them is busy, so their offsets stay.
    busy = {2};
    w.fixture.recorder.clearLog();
    w.fixture.click("Toolbar1_StepForward");
    EXPECT_TRUE(calls("PlayerSet").isEmpty());
    EXPECT_EQ(w.fixture.panel(4), "Player 3 busy");
    w.fixture.click("Toolbar1_Rewind");
    EXPECT_EQ(calls("PlayerSetFrame"), toAll("PlayerSetFrame(0)")) << "commands still go out";
    EXPECT_EQ(w.fixture.panel(5), "Position=.00/12.34") << "the index player answers";

    busy = {0};
    w.fixture.recorder.clearLog();
    w.slider().setValue(40);
    EXPECT_EQ(calls("PlayerSetPos"), toAll("PlayerSetPos(4000)"));
    EXPECT_EQ(w.fixture.panel(5), "Position=.00/12.34");
    EXPECT_TRUE(calls("while busy").isEmpty()) << "the window waited on a busy player";

    // Once it answers, the note goes and the position follows again, without another command.
    setRegion(20, 10);
    w.fixture.click("Toolbar1_Rewind");
    EXPECT_EQ(w.fixture.panel(4), "Player 1 busy");
    busy.clear();
    EXPECT_TRUE(QTest::qWaitFor([&] { return w.fixture.panel(5) == "Position=2.00/12.34"; }));
    EXPECT_EQ(w.fixture.panel(4), "");
    w.fixture.recorder.clearLog();
    w.fixture.click("Toolbar1_StepForward");
    EXPECT_EQ(calls("PlayerSetFrame"), toAll("PlayerSetFrame(61)"));
    EXPECT_EQ(w.fixture.panel(5), "Position=2.03/12.34");
}

TEST_F(Transport, RewindGoesToTheFirstFrameOrToTheRegion) {
    allAt(5000);
    w.fixture.click("Toolbar1_Play");
    w.fixture.click("Toolbar1_Rewind");
    EXPECT_EQ(calls("PlayerSetFrame"), toAll("PlayerSetFrame(0)"));
    EXPECT_FALSE(timer()->isActive());
    EXPECT_EQ(w.fixture.panel(1), "Video Rewind");
    EXPECT_EQ(w.playTip(), "Play Video (Space)");
    EXPECT_EQ(w.slider().value(), 0);

    setRegion(30, 20);
    w.fixture.recorder.clearLog();
    w.fixture.click("Toolbar1_Rewind");
    EXPECT_EQ(calls("PlayerSet"), toAll("PlayerSetPos(3000)"));
    EXPECT_EQ(w.slider().value(), 30);
}

TEST_F(Transport, RegionEndStopsOrLoopsOneTickAfterTheThumbReachedIt) {
    setRegion(30, 20);
    allAt(4000);
    w.slider().moveThumb(40);
    w.fixture.click("Toolbar1_Play");
    holdTimer();
    EXPECT_TRUE(calls("SetPos").isEmpty()) << "before the end, play goes on from where it is";

    // The tick that brings the thumb to the end only shows it; the next one acts.
    allAt(5000);
    w.fixture.tick("tmrSlider");
    EXPECT_EQ(w.slider().value(), 50);
    EXPECT_TRUE(w.fixture.recorder.log().isEmpty());
    loop(true);
    w.fixture.tick("tmrSlider");
    EXPECT_EQ(w.fixture.recorder.log(), toAll("PlayerSetPos(3000)"));
    EXPECT_EQ(w.slider().value(), 30);
    EXPECT_TRUE(timer()->isActive());

    loop(false);
    allAt(5100);
    w.fixture.tick("tmrSlider");
    w.fixture.tick("tmrSlider");
    EXPECT_EQ(w.fixture.recorder.log(), toAll("PlayerStop()"));
    EXPECT_EQ(w.slider().value(), 50) << "stopped on the region's end";
    EXPECT_FALSE(timer()->isActive());
    EXPECT_EQ(w.fixture.panel(1), "Video Stopped");
    EXPECT_EQ(w.playTip(), "Play Video (Space)");

    // Play from there restarts the region.
    w.fixture.recorder.clearLog();
    w.fixture.click("Toolbar1_Play");
    EXPECT_EQ(calls("player0."),
              (QStringList{"player0.PlayerSetPos(3000)", "player0.PlayerPlay()"}));
}

TEST_F(Transport, EndOfFileFromAnyPlayerRewindsOrLoopsThemAll) {
    setRegion(30, 20);
    w.fixture.click("Toolbar1_Play");
    holdTimer();
    w.fixture.recorder.clearLog();
    loop(true);
    emit w.player(3).PlayerEnd();
    EXPECT_EQ(w.fixture.recorder.log(), toAll("PlayerSetPos(0)")) << "a file loops from its start";
    EXPECT_EQ(w.slider().value(), 30);
    EXPECT_TRUE(timer()->isActive());

    loop(false);
    w.fixture.recorder.clearLog();
    emit w.player(1).PlayerEnd();
    EXPECT_EQ(calls("player2."),
              (QStringList{"player2.PlayerStop()", "player2.PlayerSetPos(3000)"}));
    EXPECT_EQ(w.fixture.panel(1), "Video Rewind");
    EXPECT_FALSE(timer()->isActive());

    // After a clear the file's end goes back to 0.
    w.rightPressTimeline();
    w.fixture.recorder.clearLog();
    emit w.player(0).PlayerEnd();
    EXPECT_EQ(calls("SetPos"), toAll("PlayerSetPos(0)"));
}

TEST_F(Transport, SpeedListAndSingleViewReachOnlyTheActivePlayers) {
    auto& frame = *w.fixture.find<QListWidget>("lstSpeed");
    EXPECT_EQ(w.fixture.find<QAction>("Toolbar1_Rewind")->toolTip(), "Rewind Video (Home)");
    EXPECT_TRUE(frame.toolTip().startsWith("Video Playback Speed"));

    w.fixture.click("Toolbar1_Play");
    w.fixture.click("mnuPlayer_2");
    w.fixture.recorder.clearLog();
    w.fixture.click("Toolbar1_Play");
    EXPECT_EQ(w.fixture.recorder.log(), QStringList{"player2.PlayerStop()"});
    EXPECT_TRUE(w.player(0).IsPlaying()) << "hidden players run on";

    frame.verticalScrollBar()->setValue(4);
    EXPECT_EQ(calls("SetRate"), QStringList{"player2.PlayerSetRate(0.25)"});
    frame.verticalScrollBar()->setValue(0);
    EXPECT_EQ(calls("SetRate").constLast(), "player2.PlayerSetRate(4)");

    // An open puts "X1" back on top and sends no rate: a new file starts at normal speed.
    w.fixture.recorder.clearLog();
    w.openVideo(w.videos("run(Cam1).avi"));
    EXPECT_EQ(frame.verticalScrollBar()->value(), 2);
    EXPECT_TRUE(calls("SetRate").isEmpty());
    EXPECT_FALSE(timer()->isActive());
}

TEST_F(Transport, KeyboardDrivesTheTransport) {
    QMainWindow& window = w.fixture.window();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window, Qt::Key_Space);
    EXPECT_EQ(w.fixture.recorder.log(), toAll("PlayerPlay()"));
    QTest::keyClick(&window, Qt::Key_Space);
    EXPECT_EQ(w.fixture.panel(1), "Video Paused");
    w.fixture.recorder.clearLog();
    QTest::keyClick(&window, Qt::Key_Right);
    EXPECT_EQ(calls("SetFrame"), toAll("PlayerSetFrame(1)"));
    QTest::keyClick(&window, Qt::Key_Home);
    EXPECT_EQ(w.fixture.panel(1), "Video Rewind");
    w.fixture.recorder.clearLog();
    QTest::keyClick(&window, Qt::Key_BracketRight);
    EXPECT_EQ(calls("SetRate"), toAll("PlayerSetRate(2)"));
    QTest::keyClick(&window, Qt::Key_BracketLeft);
    QTest::keyClick(&window, Qt::Key_BracketLeft);
    EXPECT_EQ(calls("SetRate").constLast(), "player3.PlayerSetRate(0.5)");

    // With the timeline in focus the arrows seek instead of stepping.
    w.slider().setFocus();
    w.fixture.recorder.clearLog();
    QTest::keyClick(&w.slider(), Qt::Key_Right);
    EXPECT_TRUE(calls("SetFrame").isEmpty());
    EXPECT_EQ(calls("SetPos"), toAll("PlayerSetPos(100)"));

    // In the image view the keys do nothing.
    w.openImage(w.touch(w.images("still.jpg")));
    w.fixture.recorder.clearLog();
    QTest::keyClick(&window, Qt::Key_Space);
    EXPECT_TRUE(w.fixture.recorder.log().isEmpty());
}

} // namespace
} // namespace ravelcue::test
