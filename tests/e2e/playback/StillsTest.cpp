#include "PlaybackE2e.h"
#include "support/MediaFiles.h"
#include "support/TempFolder.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

const QString kClip = QStringLiteral("testsrc2=size=160x90:rate=25:duration=1");

QStringList jpegsIn(const QString& folder) {
    return QDir(folder).entryList({QStringLiteral("*.jpg")}, QDir::Files);
}

// A still lands where the user will look for it, or the user is told which file failed and why;
// "complete" is never shown for a picture that was not written.
TEST(Stills, LandBesideTheVideoOrInTheImagesFolderAndFailuresSayWhy) {
    RealPlaybackWindow w;
    TempFolder home;

    // The user's own ~/Videos is not the data folder's: the still goes beside the video, not
    // into a ~/Images that does not exist.
    const QString own = home.folder("Videos") + "/match1(Cam1).avi";
    ASSERT_TRUE(makeVideo(own, kClip, {"-c:v", "mjpeg"}));
    w.openVideo(own);
    w.fixture.prompts.clear();
    w.fixture.click("mnuCaptureImage");
    EXPECT_EQ(w.fixture.prompts.texts(), QStringList{"Save Image complete"});
    EXPECT_EQ(jpegsIn(home.path() + "/Videos").size(), 1);
    EXPECT_FALSE(QDir(home.path() + "/Images").exists());

    // A member of our own Videos folder goes to Images, which is made again when missing.
    const QString member = w.videos("match1(Cam1).avi");
    ASSERT_TRUE(makeVideo(member, kClip, {"-c:v", "mjpeg"}));
    ASSERT_TRUE(QDir(w.dataDir() + "/Images").removeRecursively());
    w.openVideo(member);
    w.fixture.prompts.clear();
    w.fixture.click("mnuCaptureSet");
    EXPECT_EQ(w.fixture.prompts.texts(), QStringList{"Save Image Set complete"});
    EXPECT_EQ(jpegsIn(w.dataDir() + "/Images").size(), 1);

    // Images can't be made (a file stands in its place): both commands name the still they
    // could not write and the cause, with no word of completion.
    ASSERT_TRUE(QDir(w.dataDir() + "/Images").removeRecursively());
    QFile blocker(w.dataDir() + "/Images");
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    for (const char* command : {"mnuCaptureImage", "mnuCaptureSet"}) {
        SCOPED_TRACE(command);
        w.fixture.prompts.clear();
        w.fixture.click(command);
        ASSERT_EQ(w.fixture.prompts.shown().size(), 1U);
        const QStringList lines = w.fixture.prompts.texts()[0].split('\n');
        ASSERT_EQ(lines.size(), 2) << lines.join('|').toStdString();
        EXPECT_TRUE(lines[0] == "Save Image failed" || lines[0] == "Save Image Set failed");
        EXPECT_TRUE(lines[1].startsWith(w.images("match1(Cam1)-"))) << lines[1].toStdString();
        EXPECT_TRUE(lines[1].contains("can't be created")) << lines[1].toStdString();
        EXPECT_EQ(w.fixture.prompts.shown()[0].icon, ui::MessageIcon::Exclamation);
    }
}

} // namespace
} // namespace ravelcue::test
