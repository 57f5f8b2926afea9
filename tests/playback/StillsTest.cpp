#include "PlaybackWindow.h"

#include <QGuiApplication>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

TEST(Stills, OneStillFromTheSelectedPlayerAndASetWithOneStamp) {
    PlaybackWindow w;
    w.touch(w.videos("match1(Cam1).avi"));
    w.openVideo(w.touch(w.videos("match1(Cam3).avi")));
    emit w.player(2).view()->mousePressed(1, 0, 5, 5);
    w.fixture.recorder.clearLog();

    w.fixture.click("mnuCaptureImage");
    const QStringList one = w.fixture.recorder.calls("player2.PlayerSaveFrame");
    ASSERT_EQ(one.size(), 1);
    const QRegularExpression still("^player2\\.PlayerSaveFrame\\((.*)/Images/match1\\(Cam3\\)-"
                                   "\\d{6}\\.jpg,90\\)$");
    const QRegularExpressionMatch match = still.match(one[0]);
    ASSERT_TRUE(match.hasMatch()) << one[0].toStdString();
    EXPECT_EQ(match.captured(1), w.dataDir());
    EXPECT_EQ(w.fixture.prompts.shown().back().text, "Save Image complete");
    EXPECT_EQ(w.fixture.prompts.shown().back().icon, ui::MessageIcon::Information);

    w.fixture.recorder.clearLog();
    w.fixture.click("mnuCaptureSet");
    const QStringList set = w.fixture.recorder.log().filter("PlayerSaveFrame");
    ASSERT_EQ(set.size(), 2);
    EXPECT_TRUE(set[0].startsWith("player0.PlayerSaveFrame(" + w.images("match1(Cam1)-")));
    EXPECT_TRUE(set[1].startsWith("player2.PlayerSaveFrame(" + w.images("match1(Cam3)-")));
    EXPECT_EQ(set[0].right(15), set[1].right(15)) << "one stamp binds the Set";
    EXPECT_EQ(w.fixture.prompts.shown().back().text, "Save Image Set complete");
}

TEST(Stills, AStillOfAPictureLiesBesideIt) {
    PlaybackWindow w;
    w.openImage(w.touch(w.dataDir() + "/photos/photo.jpg"));
    w.fixture.recorder.clearLog();
    w.fixture.click("mnuCaptureImage");
    const QStringList saved = w.fixture.recorder.calls("player0.PlayerSaveFrame");
    ASSERT_EQ(saved.size(), 1);
    EXPECT_TRUE(saved[0].startsWith("player0.PlayerSaveFrame(" + w.dataDir() + "/photos/photo-"));
}

TEST(Stills, AStillFromAPlayerThatDoesNotAnswerWaitsUnderTheWaitCursorAndSaysSo) {
    PlaybackWindow w;
    w.openVideo(w.touch(w.videos("clip.avi")));
    w.fixture.recorder.playerBehaviour()->busy = {0};
    w.fixture.recorder.clearLog();

    w.fixture.click("mnuCaptureImage");
    const QStringList saved = w.fixture.recorder.calls("player0.PlayerSaveFrame");
    ASSERT_EQ(saved.size(), 1);
    const QString path = saved[0].mid(QString("player0.PlayerSaveFrame(").size()).chopped(4);
    EXPECT_EQ(w.fixture.recorder.playerBehaviour()->cursorAtSave, Qt::WaitCursor);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr) << "the cursor comes back";
    EXPECT_EQ(w.fixture.prompts.shown().back().text,
              "Save Image failed\n" + path +
                  ": The player did not reach the frame asked for within 30 seconds");
    EXPECT_EQ(w.fixture.prompts.shown().back().icon, ui::MessageIcon::Exclamation);
}

} // namespace
} // namespace ravelcue::test
