#include "platform/media/ffmpeg/VideoFileWriter.h"

#include "platform/media/ffmpeg/ImageFrames.h"
#include "support/Ffprobe.h"
#include "support/TempFolder.h"

#include <cmath>

#include <QColor>
#include <QFile>
#include <QImage>

#include <gtest/gtest.h>

using namespace ravelcue::media;
using namespace ravelcue::media::ffmpeg;

namespace {

constexpr int kFrames = 12;

int greyOf(int frameIndex) {
    return 15 + frameIndex * 20;
}

// Even frames arrive as RGB32 pictures of the file's size, odd ones as smaller YUV pictures, so
// that both conversion and scaling are exercised.
FramePtr makeInput(int frameIndex, int width, int height) {
    const int grey = greyOf(frameIndex);
    if (frameIndex % 2 == 0) {
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(QColor(grey, grey, grey));
        FramePtr view = frameViewOf(image);
        FramePtr owned = makeFrame();
        owned->format = view->format;
        owned->width = width;
        owned->height = height;
        av_frame_get_buffer(owned.get(), 0);
        av_frame_copy(owned.get(), view.get());
        return owned;
    }
    FramePtr frame = makeFrame();
    frame->format = AV_PIX_FMT_YUV420P;
    frame->width = width / 2;
    frame->height = height / 2;
    av_frame_get_buffer(frame.get(), 0);
    // Full-scale luma of a grey level in limited range.
    const int luma = 16 + (grey * 219 + 127) / 255;
    for (int y = 0; y < frame->height; ++y) {
        std::memset(frame->data[0] + y * frame->linesize[0], luma, size_t(frame->width));
    }
    for (int plane = 1; plane < 3; ++plane) {
        for (int y = 0; y < frame->height / 2; ++y) {
            std::memset(frame->data[plane] + y * frame->linesize[plane], 128,
                        size_t(frame->width / 2));
        }
    }
    return frame;
}

int centreGrey(const QImage& image) {
    const QColor centre = image.pixelColor(image.width() / 2, image.height() / 2);
    return (centre.red() + centre.green() + centre.blue()) / 3;
}

struct Case {
    VideoCodec codec;
    const char* extension;
    const char* codecName;
};

} // namespace

TEST(VideoFileWriter, EveryCodecAndContainerIsFrameExactAndReadable) {
    const Case cases[] = {
        {VideoCodec::Mjpeg, "avi", "mjpeg"},     {VideoCodec::H264, "avi", "h264"},
        {VideoCodec::Mpeg4, "avi", "mpeg4"},     {VideoCodec::Ffv1, "avi", "ffv1"},
        {VideoCodec::Huffyuv, "avi", "huffyuv"}, {VideoCodec::RawBgr, "avi", "rawvideo"},
        {VideoCodec::Wmv2, "wmv", "wmv2"},       {VideoCodec::H264, "mp4", "h264"},
        {VideoCodec::Mjpeg, "mov", "mjpeg"},     {VideoCodec::Ffv1, "mkv", "ffv1"},
    };
    ravelcue::test::TempFolder folder;
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.codecName) + " in " + c.extension);
        VideoFileSettings settings;
        settings.path =
            folder.file(QStringLiteral("out_%1.%2")
                            .arg(QLatin1String(c.codecName), QLatin1String(c.extension)));
        settings.width = 320;
        settings.height = 240;
        settings.frameRate = {25, 1};
        settings.codec = c.codec;
        settings.bitRate = c.codec == VideoCodec::Wmv2 ? 1'500'000 : 0;
        MediaError error;
        auto writer = VideoFileWriter::open(settings, error);
        ASSERT_TRUE(writer) << error.text.toStdString();
        for (int i = 0; i < kFrames; ++i) {
            FramePtr input = makeInput(i, settings.width, settings.height);
            ASSERT_TRUE(writer->write(*input, i).ok());
        }
        EXPECT_EQ(writer->framesWritten(), kFrames);
        ASSERT_TRUE(writer->finish().ok());

        const ravelcue::test::VideoProbe probe = ravelcue::test::probeVideo(settings.path);
        ASSERT_TRUE(probe.ok);
        EXPECT_EQ(probe.codecName, QLatin1String(c.codecName));
        EXPECT_EQ(probe.width, 320);
        EXPECT_EQ(probe.height, 240);
        EXPECT_EQ(probe.frameCount, kFrames);
        EXPECT_NEAR(probe.durationSeconds, kFrames / 25.0, 0.041);

        std::vector<int> greys;
        ASSERT_TRUE(ravelcue::test::forEachFrame(
            settings.path, [&](int, const QImage& frame) { greys.push_back(centreGrey(frame)); }));
        ASSERT_EQ(greys.size(), size_t(kFrames));
        for (int i = 0; i < kFrames; ++i) {
            EXPECT_NEAR(greys[size_t(i)], greyOf(i), 6) << "frame " << i;
        }
    }
}

TEST(VideoFileWriter, GapsKeepTimeAndAnAbandonedWriterLeavesAReadableFile) {
    ravelcue::test::TempFolder folder;
    VideoFileSettings settings;
    settings.path = folder.file(QStringLiteral("gaps.mkv"));
    settings.width = 160;
    settings.height = 120;
    settings.frameRate = {10, 1};
    MediaError error;
    {
        auto writer = VideoFileWriter::open(settings, error);
        ASSERT_TRUE(writer);
        // Frames 0, 1 and 5: the file lasts six frame periods but holds three pictures.
        for (int index : {0, 1, 5}) {
            ASSERT_TRUE(writer->write(*makeInput(index, 160, 120), index).ok());
        }
        EXPECT_FALSE(writer->write(*makeInput(4, 160, 120), 4).ok());
        EXPECT_GT(writer->bytesWritten(), 0);
        // Dropped without finish(), as when a recording thread is torn down.
    }
    const ravelcue::test::VideoProbe probe = ravelcue::test::probeVideo(settings.path);
    ASSERT_TRUE(probe.ok);
    EXPECT_EQ(probe.frameCount, 3);
    EXPECT_NEAR(probe.durationSeconds, 0.6, 0.011);
}

TEST(VideoFileWriter, RefusesWhatItCannotWriteAndLeavesNothingBehind) {
    ravelcue::test::TempFolder folder;
    VideoFileSettings settings;
    settings.width = 160;
    settings.height = 120;
    MediaError error;

    settings.path = folder.file(QStringLiteral("missing/folder/x.avi"));
    EXPECT_FALSE(VideoFileWriter::open(settings, error));
    EXPECT_FALSE(error.ok());

    settings.path = folder.file(QStringLiteral("x.unknownextension"));
    EXPECT_FALSE(VideoFileWriter::open(settings, error));
    EXPECT_FALSE(QFile::exists(settings.path));

    settings.path = folder.file(QStringLiteral("x.avi"));
    settings.width = 0;
    EXPECT_FALSE(VideoFileWriter::open(settings, error));
    EXPECT_FALSE(QFile::exists(settings.path));
}
