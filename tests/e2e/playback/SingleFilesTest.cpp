#include "PlaybackE2e.h"
#include "core/NumberFormat.h"
#include "support/Ffprobe.h"
#include "support/MediaFiles.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

const QString kPattern = QStringLiteral("testsrc2=size=320x180:rate=30:duration=1");

// Frame on show against ffmpeg's frame of that number; neighbouring frames of the pattern
// differ by far more.
constexpr double kSameFrame = 1.0;

void stepBy(RealPlaybackWindow& w, int steps) {
    const QString button =
        steps > 0 ? QStringLiteral("Toolbar1_StepForward") : QStringLiteral("Toolbar1_StepBack");
    for (int i = 0; i < std::abs(steps); ++i) {
        w.fixture.click(button);
    }
    w.waitShown();
}

// What phones record: H.264 with B-frames at a variable rate, held sideways (a rotation in the
// file), and HEVC in a MOV with the extension in capitals.
TEST(SingleFiles, PhoneVideosOpenUprightAndStepFrameByFrame) {
    RealPlaybackWindow w;
    const QString flat = w.videos("flat.mp4");
    ASSERT_TRUE(makeVideo(flat, kPattern + ",settb=1/90000,setpts=N*3000+mod(N\\,3)*600",
                          {"-c:v", "libx264", "-bf", "3", "-g", "12", "-pix_fmt", "yuv420p",
                           "-fps_mode", "passthrough"}));
    const QString portrait = w.videos("take.mp4");
    ASSERT_TRUE(runFfmpeg({"-i", flat, "-c", "copy", "-metadata:s:v:0", "rotate=90", portrait}));
    const QString hevc = w.videos("clip.MOV");
    ASSERT_TRUE(makeVideo(hevc, kPattern,
                          {"-c:v", "libx265", "-x265-params", "log-level=error:keyint=12:bframes=3",
                           "-tag:v", "hvc1", "-pix_fmt", "yuv420p"}));

    struct Phone {
        QString path;
        std::string type;
        QSize upright;
    };
    for (const Phone& phone :
         {Phone{portrait, "mp4", {180, 320}}, Phone{hevc, "mov", {320, 180}}}) {
        SCOPED_TRACE(phone.path.toStdString());
        w.openVideo(phone.path);
        ASSERT_EQ(w.fixture.prompts.texts(), QStringList());
        EXPECT_EQ(w.state().PlayerView, "SinglePlayer");
        EXPECT_EQ(w.state().LoadedFileType, phone.type);
        EXPECT_EQ(w.state().VideoWidth[0], phone.upright.width());
        EXPECT_EQ(w.state().VideoHeight[0], phone.upright.height());
        EXPECT_EQ(w.fixture.panel(2), QFileInfo(phone.path).fileName());
        EXPECT_EQ(w.fixture.panel(3), QStringLiteral("Size:%1x%2, Fps:30")
                                          .arg(phone.upright.width())
                                          .arg(phone.upright.height()));

        // Over the reordered frames and back across a keyframe.
        const std::vector<double> times = frameTimesMs(phone.path);
        const std::vector<QImage> expected = extractFrames(phone.path, {14, 11});
        ASSERT_EQ(expected.size(), 2U);
        stepBy(w, 14);
        EXPECT_EQ(w.player(0).PlayerGetFrame(), 14);
        EXPECT_NEAR(w.player(0).PlayerGetPos(), times.at(14), 0.5);
        EXPECT_LT(meanDifference(w.player(0).view()->currentFrame(), expected[0]), kSameFrame);
        stepBy(w, -3);
        EXPECT_LT(meanDifference(w.player(0).view()->currentFrame(), expected[1]), kSameFrame);
    }

    // A still of the frame on show lands in the images folder and opens as a single image.
    w.fixture.prompts.clear();
    w.fixture.click("mnuCaptureImage");
    EXPECT_EQ(w.fixture.prompts.texts(), QStringList{"Save Image complete"});
    const QStringList stills = QDir(w.images(QString())).entryList({"clip-*.jpg"}, QDir::Files);
    ASSERT_EQ(stills.size(), 1);
    const QImage onShow = w.player(0).view()->currentFrame();
    w.openImage(w.images(stills[0]));
    EXPECT_EQ(w.state().CurrentState, "LoadImageFile");
    EXPECT_EQ(w.state().PlayerView, "SinglePlayer");
    EXPECT_EQ(w.fixture.panel(1), "Image View");
    EXPECT_EQ(w.fixture.panel(2), stills[0]);
    w.waitShown();
    EXPECT_LT(meanDifference(w.player(0).view()->currentFrame(), onShow), 4.0);
}

TEST(SingleFiles, BrokenFilesSayErrorAndTheWindowCarriesOn) {
    RealPlaybackWindow w;
    const QString good = w.videos("good(Cam1).avi");
    ASSERT_TRUE(makeVideo(good, kPattern, {"-c:v", "mjpeg", "-q:v", "3"}));
    const QString whole = w.videos("whole.mp4");
    ASSERT_TRUE(makeVideo(whole, kPattern, {"-c:v", "libx264", "-pix_fmt", "yuv420p"}));

    auto write = [&](const QString& name, const QByteArray& bytes) {
        QFile file(w.videos(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return w.videos(name);
    };
    QByteArray noise(64 * 1024, '\0');
    for (int i = 0; i < noise.size(); ++i) {
        noise[i] = static_cast<char>((i * 7919) ^ (i >> 3));
    }
    QFile wholeFile(whole);
    ASSERT_TRUE(wholeFile.open(QIODevice::ReadOnly));
    const QByteArray cut = wholeFile.read(wholeFile.size() / 2);
    // RIFF AVI headers over noise, a file that stops in the middle, and the second member of a
    // Set whose first is good.
    const QStringList broken = {
        write("noise.avi", QByteArray("RIFF\x10\0\0\0AVI LIST", 16) + noise), write("cut.mp4", cut),
        write("good(Cam2).avi", noise)};

    for (const QString& path : broken) {
        SCOPED_TRACE(path.toStdString());
        w.fixture.prompts.clear();
        w.openVideo(path);
        ASSERT_EQ(w.fixture.prompts.shown().size(), 1U);
        const QStringList lines = w.fixture.prompts.texts()[0].split('\n');
        ASSERT_EQ(lines.size(), 2) << lines.join('|').toStdString();
        EXPECT_TRUE(lines[0].contains(QRegularExpression("^Error - \\d+$")))
            << lines[0].toStdString();
        // The second line names the file and the cause.
        EXPECT_TRUE(lines[1].startsWith(path + ": ")) << lines[1].toStdString();
        EXPECT_GT(lines[1].size(), path.size() + 8) << lines[1].toStdString();
        EXPECT_EQ(w.fixture.prompts.shown()[0].icon, ui::MessageIcon::Critical);
        // Whatever the transport is asked now, it finds nothing to crash on.
        for (const char* button : {"Toolbar1_Play", "Toolbar1_StepForward", "Toolbar1_Rewind",
                                   "Toolbar1_StepBack", "Toolbar1_Play", "Toolbar1_Stop"}) {
            w.fixture.click(button);
        }
        w.dragTimeline(3, 8, Qt::ShiftModifier, Qt::ShiftModifier);
        w.fixture.tick("tmrSlider");
    }
    EXPECT_TRUE(w.player(0).IsOpen()) << "the Set's open stopped at the broken member";
    EXPECT_FALSE(w.player(1).IsOpen());

    w.fixture.prompts.clear();
    QFile::remove(w.videos("good(Cam2).avi"));
    w.openVideo(good);
    EXPECT_EQ(w.fixture.prompts.texts(), QStringList());
    EXPECT_EQ(w.fixture.panel(1), "Video View");
    stepBy(w, 2);
    EXPECT_LT(meanDifference(w.player(0).view()->currentFrame(), extractFrame(good, 2)), 3.0);
}

// A copy that stopped half way, of an MP4 written with its index in front: the header says twice
// the length the file holds. It opens on the header's word (long enough that the counting is not
// done by then); once the player has counted its frames, the timeline, a region drawn up to its
// end and the status take the real length.
TEST(SingleFiles, TheTimelineTakesTheCountedLengthOfAFileCutShort) {
    RealPlaybackWindow w;
    const QString path = w.videos("cut.mp4");
    ASSERT_TRUE(makeVideo(path, QStringLiteral("testsrc2=size=320x180:rate=30:duration=30"),
                          {"-c:v", "mjpeg", "-q:v", "3", "-movflags", "+faststart"}));
    QFile file(path);
    ASSERT_TRUE(file.resize(file.size() / 2));
    const int frames = probeVideo(path).frameCount;
    ASSERT_GT(frames, 300);
    ASSERT_LT(frames, 600);

    w.openVideo(path);
    ASSERT_EQ(w.fixture.prompts.texts(), QStringList());
    const int counted = qRound(frames * 1000.0 / 30 / 100);
    const int atOpen = w.slider().maximum();
    w.dragTimeline(5, atOpen, Qt::ShiftModifier, Qt::ShiftModifier);
    ASSERT_EQ(w.slider().SelStart(), 5);
    ASSERT_EQ(w.slider().SelStart() + w.slider().SelLength(), atOpen);

    w.waitShown();
    EXPECT_TRUE(QTest::qWaitFor([&] { return w.slider().maximum() == counted; }, 30000))
        << "the timeline still ends at " << w.slider().maximum();
    EXPECT_EQ(w.player(0).PlayerGetFrameCount(), frames);
    EXPECT_EQ(w.slider().SelStart(), 5);
    EXPECT_EQ(w.slider().SelStart() + w.slider().SelLength(), std::min(atOpen, counted));
    EXPECT_EQ(w.fixture.panel(3), QStringLiteral("Size:320x180, Fps:30"));
    EXPECT_TRUE(w.fixture.panel(5).endsWith(QStringLiteral("/") +
                                            QString::fromStdString(Format(frames / 30.0, "#.00"))))
        << w.fixture.panel(5).toStdString();
}

} // namespace
} // namespace ravelcue::test
