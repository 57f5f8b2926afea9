#include "PlaybackWindow.h"

#include <QMenu>
#include <QToolTip>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

using Icon = ui::MessageIcon;

TEST(Opening, PickedMemberOpensItsSetIntoTheQuadView) {
    PlaybackWindow w;
    w.touch(w.videos("match1(Cam1).avi"));
    const QString picked = w.touch(w.videos("match1(Cam3).avi"));
    w.fixture.recorder.playerBehaviour()->defaultFile = {{1920, 1080}, 12340, 370, 0};
    w.fixture.recorder.clearLog();
    w.openVideo(picked);

    const ui::OpenFileRequest& asked = w.fixture.prompts.fileRequests().at(0);
    EXPECT_EQ(asked.title, "Load Video File");
    EXPECT_EQ(asked.folder, w.dataDir() + "/Videos");
    EXPECT_TRUE(asked.filter.startsWith("AVI Files(*.avi)|*.avi;*.AVI|Videos("));
    EXPECT_EQ(asked.defaultSuffix, "avi");

    const AppState& s = w.state();
    EXPECT_EQ(s.CurrentVideoFile, picked.toStdString());
    EXPECT_EQ(s.CurrentState, "PlayVideoFile");
    EXPECT_EQ(s.PlayerView, "QuadPlayer");
    EXPECT_EQ(s.PlayerEnable, (std::array<bool, 4>{true, false, true, false}));
    EXPECT_EQ(s.ReferencePlayer, 0);
    EXPECT_EQ(s.LoadedFileType, "avi");
    EXPECT_EQ(s.VideoWidth[2], 1920);
    EXPECT_FLOAT_EQ(s.PlayerScaleX[2], 1920.0F / static_cast<float>(w.player(2).view()->width()));
    EXPECT_TRUE(w.fixture.prompts.texts().isEmpty()) << "no size warning for large videos";

    const QStringList& log = w.fixture.recorder.log();
    EXPECT_TRUE(log.contains("player0.PlayerOpen(" + w.videos("match1(Cam1).avi") + ")"));
    EXPECT_TRUE(log.contains("player2.PlayerOpen(" + picked + ")"));
    EXPECT_TRUE(log.contains("player1.PlayerClose()"));
    EXPECT_TRUE(log.contains("player3.PlayerClose()"));
    // The markers of the members are cleared, on the players and the re-encoders, and the shape
    // layer takes the picture's size; the empty players are left alone.
    EXPECT_TRUE(log.contains("player2.SetTextOverlay(39,)"));
    EXPECT_TRUE(log.contains("recompress0.SetTextOverlay(0,)"));
    EXPECT_EQ(log.filter("player2.SetBitmapOverlay").constLast(),
              "player2.SetBitmapOverlay(1920x1080)");
    EXPECT_TRUE(w.fixture.recorder.calls("player1.SetTextOverlay").isEmpty());
    EXPECT_TRUE(w.fixture.recorder.calls("player0.PlayerPlay").isEmpty()) << "opened stopped";

    EXPECT_EQ(w.fixture.panel(1), "Video View");
    EXPECT_EQ(w.fixture.panel(2), "match1(****).avi");
    EXPECT_EQ(w.fixture.panel(3), "Size:1920x1080, Fps:30");
    EXPECT_EQ(w.fixture.panel(5), "Position=.00/12.34");
    EXPECT_EQ(w.slider().maximum(), 123);
    EXPECT_EQ(w.slider().value(), 0);
    for (const char* entry : {"mnuPlayerSelect", "mnuCaptureImage", "mnuCaptureSet", "mnuSaveVideo",
                              "mnuPlayer_0", "mnuPlayer_2"}) {
        EXPECT_TRUE(w.enabled(entry)) << entry;
    }
    EXPECT_FALSE(w.enabled("mnuPlayer_1"));
    EXPECT_FALSE(w.enabled("mnuPlayer_3"));
    EXPECT_EQ(w.fixture.find<QAction>("mnuPlayer_2")->text(), "Cam3");
    for (int i = 0; i < 4; ++i) {
        EXPECT_TRUE(w.shown(QStringLiteral("picPlayer_%1").arg(i)));
    }
    EXPECT_TRUE(w.shown("Slider1"));
    EXPECT_TRUE(w.shown("Toolbar1"));
}

TEST(Opening, DoubleClickAndPlayerMenuSwitchBetweenOneAndAllWithoutTouchingPlayers) {
    PlaybackWindow w;
    w.touch(w.videos("m(Cam1).avi"));
    w.openVideo(w.touch(w.videos("m(Cam2).avi")));
    w.player(1).PlayerPlay();
    w.fixture.recorder.clearLog();

    emit w.player(1).view()->PictureDoubleClick();
    EXPECT_EQ(w.state().PlayerView, "SinglePlayer");
    EXPECT_EQ(w.state().SelectedPlayer, 1);
    EXPECT_TRUE(w.shown("picPlayer_1"));
    EXPECT_FALSE(w.shown("picPlayer_0"));
    EXPECT_TRUE(w.enabled("mnuPlayer_4"));
    EXPECT_TRUE(w.player(1).IsPlaying());

    emit w.player(1).view()->PictureDoubleClick();
    EXPECT_EQ(w.state().PlayerView, "QuadPlayer");
    EXPECT_FALSE(w.enabled("mnuPlayer_4"));
    EXPECT_TRUE(w.shown("picPlayer_3"));

    emit w.player(3).view()->PictureDoubleClick();
    EXPECT_EQ(w.state().PlayerView, "QuadPlayer") << "an empty pane is not shown alone";

    w.fixture.click("mnuPlayer_0");
    EXPECT_EQ(w.state().SelectedPlayer, 0);
    EXPECT_TRUE(w.shown("picPlayer_0"));
    EXPECT_FALSE(w.shown("picPlayer_1"));
    EXPECT_TRUE(w.fixture.recorder.log().filter("PlayerOpen").isEmpty());
    EXPECT_TRUE(w.fixture.recorder.log().filter("PlayerClose").isEmpty());

    // A right press on a player that holds a file selects it and opens the pop-up menu.
    w.fixture.click("mnuPlayer_4");
    emit w.player(1).view()->mousePressed(2, 0, 10, 10);
    auto* popup = w.fixture.window().findChild<QMenu*>("mnuPopup");
    EXPECT_EQ(w.state().SelectedPlayer, 1);
    EXPECT_TRUE(popup->isVisible());
    popup->hide();
    emit w.player(2).view()->mousePressed(2, 0, 10, 10);
    EXPECT_EQ(w.state().SelectedPlayer, 2);
    EXPECT_FALSE(popup->isVisible()) << "nothing to offer on an empty player";
}

TEST(Opening, SingleFilesOneMemberSetsAndTypes) {
    PlaybackWindow w;
    // A Set with one member shows that camera alone.
    w.openVideo(w.touch(w.videos("solo(Cam3).avi")));
    EXPECT_EQ(w.state().PlayerView, "SinglePlayer");
    EXPECT_EQ(w.state().SelectedPlayer, 2);
    EXPECT_TRUE(w.enabled("mnuPlayerSelect"));
    EXPECT_EQ(w.fixture.panel(2), "solo(****).avi");
    EXPECT_TRUE(w.shown("picPlayer_2"));

    // A saved copy opens alone in player 0 though it has a bracket.
    const QString saved = w.touch(w.videos("solo(Cam3)+.avi"));
    w.openVideo(saved);
    EXPECT_EQ(w.state().SelectedPlayer, 0);
    EXPECT_TRUE(w.state().PlayerEnable[0]);
    EXPECT_TRUE(w.state().PlayerEnable[2]) << "the others keep what they held";
    EXPECT_EQ(w.fixture.panel(2), "solo(Cam3)+.avi");
    EXPECT_FALSE(w.enabled("mnuPlayerSelect"));
    EXPECT_FALSE(w.enabled("mnuCaptureSet"));
    EXPECT_TRUE(w.enabled("mnuSaveVideo"));
    // Each player is named by its camera, whichever file it holds.
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(w.player(i).view()->toolTip(), QStringLiteral("Cam%1").arg(i + 1));
    }

    // Phones' files and capitals: the type follows the extension; an unknown one keeps it.
    w.openVideo(w.touch(w.dataDir() + "/PHONE.MP4"));
    EXPECT_EQ(w.state().LoadedFileType, "mp4");
    w.openVideo(w.touch(w.dataDir() + "/clip.mpg"));
    EXPECT_EQ(w.state().LoadedFileType, "mp4");
    EXPECT_EQ(w.fixture.prompts.fileRequests().back().fileName, w.dataDir() + "/PHONE.MP4")
        << "the dialog starts on the last file";
}

TEST(Opening, CancelMissingSetsAndBrokenFilesLeaveWhatTheyFound) {
    PlaybackWindow w;
    const QString first = w.touch(w.videos("a(Cam1).avi"));
    w.openVideo(first);
    w.fixture.recorder.clearLog();

    w.fixture.prompts.chooseFileNext(QString());
    w.fixture.click("cmdLoadVideo");
    EXPECT_TRUE(w.fixture.prompts.texts().isEmpty());
    EXPECT_TRUE(w.fixture.recorder.log().isEmpty());

    // A bracket in a folder: no member can be found.
    w.openVideo(w.touch(w.dataDir() + "/clips (old)/b(Cam1).avi"));
    ASSERT_EQ(w.fixture.prompts.shown().size(), 1U);
    EXPECT_EQ(w.fixture.prompts.shown()[0].text, "No file Set found for that file name.\n"
                                                 "Select another file Set or select Single file.");
    EXPECT_EQ(w.fixture.prompts.shown()[0].icon, Icon::Exclamation);
    EXPECT_EQ(w.state().CurrentVideoFile, first.toStdString());
    EXPECT_EQ(w.fixture.panel(2), "a(****).avi");
    EXPECT_TRUE(w.fixture.recorder.log().filter("player").isEmpty());

    // A member that cannot be opened stops the open where it stood.
    w.touch(w.videos("c(Cam1).avi"));
    const QString broken = w.touch(w.videos("c(Cam2).avi"));
    w.fixture.recorder.playerBehaviour()->files[broken].openError = 1001;
    w.fixture.prompts.clear();
    w.touch(w.videos("c(Cam4).avi"));
    w.openVideo(broken);
    ASSERT_EQ(w.fixture.prompts.shown().size(), 1U);
    // The number as ever, then the file that failed and why.
    EXPECT_EQ(w.fixture.prompts.shown()[0].text,
              "Error - 1001\n" + broken + ": cannot open " + broken);
    EXPECT_EQ(w.fixture.prompts.shown()[0].icon, Icon::Critical);
    EXPECT_TRUE(w.player(0).IsOpen());
    EXPECT_TRUE(w.fixture.recorder.calls("player3.PlayerOpen").isEmpty());
    EXPECT_EQ(w.state().CurrentState, "PlayVideoFile");
}

TEST(Opening, ImagesOpenAloneOrAsSetsByTheirStamp) {
    PlaybackWindow w;
    w.touch(w.images("shot(Cam1)-140509.jpg"));
    w.touch(w.images("shot(Cam2)-150000.jpg"));
    const QString picked = w.touch(w.images("shot(Cam4)-140509.jpg"));
    w.fixture.recorder.clearLog();
    w.openImage(picked);

    const ui::OpenFileRequest& asked = w.fixture.prompts.fileRequests().at(0);
    EXPECT_EQ(asked.title, "Load Image File");
    EXPECT_EQ(asked.folder, w.dataDir() + "/Images");
    EXPECT_EQ(asked.filter, "JPG Files(*.jpg)|*.jpg;*.JPG|All Files(*.*)|*.*");
    EXPECT_EQ(asked.defaultSuffix, "jpg");

    const AppState& s = w.state();
    EXPECT_EQ(s.CurrentState, "LoadImageFile");
    EXPECT_EQ(s.CurrentImageFile, picked.toStdString());
    EXPECT_EQ(s.PlayerEnable, (std::array<bool, 4>{true, false, false, true}));
    EXPECT_EQ(s.LoadedFileType, "img");
    EXPECT_TRUE(w.fixture.recorder.log().contains("player1.PlayerClose()"));
    EXPECT_EQ(w.fixture.panel(1), "Image View");
    EXPECT_EQ(w.fixture.panel(2), "shot(****)-140509.jpg");
    EXPECT_EQ(w.fixture.panel(3), "");
    EXPECT_EQ(w.fixture.panel(5), "To Zoom and Pan, right click on image");
    EXPECT_TRUE(w.enabled("mnuCaptureSet"));
    EXPECT_FALSE(w.enabled("mnuSaveVideo"));
    EXPECT_FALSE(w.shown("Toolbar1"));
    EXPECT_FALSE(w.shown("Slider1"));

    w.openImage(w.touch(w.images("photo.JPG")));
    EXPECT_EQ(s.PlayerView, "SinglePlayer");
    EXPECT_EQ(s.SelectedPlayer, 0);
    EXPECT_EQ(w.fixture.panel(2), "photo.JPG");
    EXPECT_FALSE(w.enabled("mnuPlayerSelect"));
    EXPECT_FALSE(w.enabled("mnuCaptureSet"));
    EXPECT_TRUE(w.enabled("mnuCaptureImage"));

    // From the image view a video opens again, with the transport back.
    w.openVideo(w.touch(w.videos("v.avi")));
    EXPECT_TRUE(w.shown("Toolbar1"));
    EXPECT_EQ(s.LoadedFileType, "avi");
}

} // namespace
} // namespace ravelcue::test
