#include "platform/media/ffmpeg/FfmpegRecompress.h"
#include "platform/media/ffmpeg/RecompressJob.h"
#include "support/Ffprobe.h"
#include "support/MediaFiles.h"
#include "support/TempFolder.h"

#include <csignal>
#include <sys/resource.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

using ravelcue::media::MediaError;
using ravelcue::media::ffmpeg::FfmpegRecompress;
namespace media_error = ravelcue::media::media_error;
using namespace ravelcue::test;

namespace {

// A red 16 x 16 marker at (40, 40) and a yellow note at (150, 100).
void addMarkups(FfmpegRecompress& recompress) {
    QImage bitmap(320, 180, QImage::Format_RGB32);
    bitmap.fill(Qt::black);
    QPainter(&bitmap).fillRect(40, 40, 16, 16, Qt::red);
    recompress.SetBitmapOverlay(bitmap);
    recompress.SetTextOverlay(0, QStringLiteral("Note"), 150, 100, QStringLiteral("Arial Bold"), 12,
                              Qt::yellow);
}

MediaError runJob(FfmpegRecompress& recompress, const QString& source, const QString& destination,
                  double startMs, double endMs, bool cancelAtOnce = false) {
    QSignalSpy finished(&recompress, &FfmpegRecompress::finished);
    EXPECT_TRUE(recompress.Recompress(source, destination, startMs, endMs));
    EXPECT_FALSE(recompress.Recompress(source, destination, startMs, endMs)); // busy
    if (cancelAtOnce) {
        recompress.Cancel();
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return finished.count() == 1; }, 120000));
    if (finished.count() != 1) {
        return {-1, QStringLiteral("no end")};
    }
    EXPECT_EQ(finished.at(0).at(0).toInt(), recompress.index());
    return finished.at(0).at(1).value<MediaError>();
}

// Nothing but the finished file is left in the folder: no temporary file beside it.
QStringList filesIn(const QString& folder) {
    return QDir(folder).entryList(QDir::Files | QDir::Hidden);
}

bool isRed(QRgb pixel) {
    return qRed(pixel) > 190 && qGreen(pixel) < 80 && qBlue(pixel) < 80;
}

class RecompressTest : public ::testing::Test {
protected:
    void SetUp() override {
        source = folder.file(QStringLiteral("in/clip.avi"));
        folder.folder(QStringLiteral("in"));
        folder.folder(QStringLiteral("out"));
        ASSERT_TRUE(makeVideo(source, QStringLiteral("testsrc2=size=320x180:rate=25:duration=2"),
                              {"-c:v", "mjpeg", "-q:v", "2"}));
    }
    TempFolder folder;
    QString source;
};

// A span of 400..1200 ms of 40 ms frames is frames 10..29: exactly those, in the source's
// codec, with the marker and the note burnt into every one.
TEST_F(RecompressTest, SpanIsFrameExactWithTheMarkupsBurntIn) {
    FfmpegRecompress recompress(2);
    addMarkups(recompress);
    QSignalSpy progress(&recompress, &FfmpegRecompress::progress);
    const QString destination = folder.file(QStringLiteral("out/clip+.avi"));
    const MediaError error = runJob(recompress, source, destination, 400, 1200);
    ASSERT_TRUE(error.ok()) << error.text.toStdString();
    EXPECT_EQ(filesIn(folder.file("out")), QStringList{"clip+.avi"});
    ASSERT_FALSE(progress.isEmpty());
    EXPECT_EQ(progress.last().at(0).toInt(), 100);

    const VideoProbe probe = probeVideo(destination);
    EXPECT_EQ(probe.codecName, QStringLiteral("mjpeg"));
    EXPECT_EQ(probe.frameCount, 20);
    EXPECT_EQ(QSize(probe.width, probe.height), QSize(320, 180));

    const std::vector<QImage> written = extractFrames(destination, {0, 19});
    const std::vector<QImage> original = extractFrames(source, {9, 10, 11, 29, 30});
    ASSERT_EQ(written.size(), 2u);
    ASSERT_EQ(original.size(), 5u);
    // Away from the markups each frame written is its source frame, not a neighbour.
    const auto apart = [&](int w, int o) {
        return meanDifference(written[size_t(w)].copy(180, 130, 140, 50),
                              original[size_t(o)].copy(180, 130, 140, 50));
    };
    EXPECT_LT(apart(0, 1), std::min({4.0, apart(0, 0), apart(0, 2)}));
    EXPECT_LT(apart(1, 3), std::min(4.0, apart(1, 4)));
    for (const QImage& frame : written) {
        EXPECT_TRUE(isRed(frame.pixel(47, 47)));
        EXPECT_TRUE(isRed(frame.pixel(42, 53)));
        int yellow = 0;
        for (int y = 100; y < 125; ++y) {
            for (int x = 150; x < 200; ++x) {
                const QRgb p = frame.pixel(x, y);
                yellow += qRed(p) > 170 && qGreen(p) > 170 && qBlue(p) < 100 ? 1 : 0;
            }
        }
        EXPECT_GT(yellow, 30);
    }
}

// The whole file when the span is 0 and 0; a codec Ravelcue does not encode becomes H.264.
TEST_F(RecompressTest, WholeFileAndCodecChoice) {
    FfmpegRecompress recompress(0);
    addMarkups(recompress);
    const QString whole = folder.file(QStringLiteral("out/whole+.avi"));
    ASSERT_TRUE(runJob(recompress, source, whole, 0, 0).ok());
    EXPECT_EQ(probeVideo(whole).frameCount, 50);

    // A phone's HEVC with sound: H.264 out, and the sound of the span (1 s to the end) along.
    const QString hevc = folder.file(QStringLiteral("in/phone.mov"));
    ASSERT_TRUE(
        runFfmpeg({"-f", "lavfi", "-i", "testsrc2=size=320x180:rate=25:duration=2", "-f", "lavfi",
                   "-i", "sine=frequency=440:duration=2", "-c:v", "libx265", "-x265-params",
                   "log-level=error:bframes=3", "-pix_fmt", "yuv420p", "-c:a", "aac", hevc}));
    const QString converted = folder.file(QStringLiteral("out/phone+.mov"));
    ASSERT_TRUE(runJob(recompress, hevc, converted, 1000, 0).ok());
    const VideoProbe probe = probeVideo(converted);
    EXPECT_EQ(probe.codecName, QStringLiteral("h264"));
    EXPECT_EQ(probe.frameCount, 25);
    EXPECT_TRUE(isRed(extractFrame(converted, 12).pixel(47, 47)));
    EXPECT_NEAR(soundSeconds(converted), 1.0, 0.1);
    EXPECT_EQ(filesIn(folder.file("out")), (QStringList{"phone+.mov", "whole+.avi"}));

    // A recording cut short, whose header still promises its whole length: the frames it holds,
    // with as much sound as picture.
    const QString cut = folder.file(QStringLiteral("in/cut.mp4"));
    ASSERT_TRUE(runFfmpeg({"-f", "lavfi", "-i", "testsrc2=size=320x180:rate=25:duration=8", "-f",
                           "lavfi", "-i", "sine=frequency=440:duration=8", "-c:v", "mjpeg", "-q:v",
                           "5", "-c:a", "aac", "-movflags", "+faststart", cut}));
    QFile cutFile(cut);
    ASSERT_TRUE(cutFile.resize(cutFile.size() / 2));
    const int held = probeVideo(cut).frameCount;
    ASSERT_LT(held, 150);
    const QString saved = folder.file(QStringLiteral("out/cut+.mp4"));
    QSignalSpy progress(&recompress, &FfmpegRecompress::progress);
    ASSERT_TRUE(runJob(recompress, cut, saved, 0, 0).ok());
    EXPECT_EQ(probeVideo(saved).frameCount, held);
    EXPECT_NEAR(soundSeconds(saved), held / 25.0, 0.2);
    ASSERT_FALSE(progress.isEmpty());
    EXPECT_EQ(progress.last().at(0).toInt(), 100);
}

// Failures end with an error and leave no file under the destination name, nor a temporary one.
TEST_F(RecompressTest, FailuresLeaveNoFileBehind) {
    FfmpegRecompress recompress(1);
    addMarkups(recompress);
    const QString destination = folder.file(QStringLiteral("out/clip+.avi"));

    EXPECT_EQ(runJob(recompress, folder.file("in/missing.avi"), destination, 0, 0).number,
              media_error::FileNotFound);
    EXPECT_TRUE(filesIn(folder.file("out")).isEmpty());

    EXPECT_EQ(runJob(recompress, source, destination, 0, 0, true).number, media_error::Cancelled);
    EXPECT_TRUE(filesIn(folder.file("out")).isEmpty());

    // A full disk, played by a limit on the size of the files this process writes.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit previous{};
    getrlimit(RLIMIT_FSIZE, &previous);
    rlimit small = previous;
    small.rlim_cur = 64 * 1024;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const MediaError full = runJob(recompress, source, destination, 0, 0);
    setrlimit(RLIMIT_FSIZE, &previous);
    EXPECT_EQ(full.number, media_error::DiskFull) << full.text.toStdString();
    EXPECT_FALSE(full.text.isEmpty());
    EXPECT_TRUE(filesIn(folder.file("out")).isEmpty());
}

} // namespace
