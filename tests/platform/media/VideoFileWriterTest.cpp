#include "platform/media/ffmpeg/VideoFileWriter.h"

#include "platform/media/ffmpeg/ImageFrames.h"
#include "platform/media/ffmpeg/VideoFileReader.h"
#include "support/Ffprobe.h"
#include "support/TempFolder.h"

#include <filesystem>
#include <future>

#include <QColor>
#include <QFile>
#include <QImage>

#include <gtest/gtest.h>

using namespace ravelcue::media;
using namespace ravelcue::media::ffmpeg;
using ravelcue::test::TempFolder;

namespace {

constexpr int kFrames = 12;

// Every frame its own colour, so that a swap of red and blue anywhere shows.
QColor colourOf(int frameIndex) {
    return QColor(15 + frameIndex * 20, 128, 255 - frameIndex * 20);
}

// Even frames arrive as RGB32 pictures of the file's size, odd ones as YUV pictures half as
// large, so that both conversion and scaling are exercised. The picture must outlive the frame.
FramePtr inputFrame(const QImage& picture, int frameIndex) {
    if (frameIndex % 2 == 0) {
        return frameViewOf(picture);
    }
    const QImage half = picture.scaled(picture.size() / 2);
    FramePtr frame = makeFrame();
    frame->format = AV_PIX_FMT_YUV420P;
    frame->width = half.width();
    frame->height = half.height();
    av_frame_get_buffer(frame.get(), 0);
    EXPECT_TRUE(convertPictureQuickly(*frameViewOf(half), *frame));
    return frame;
}

struct Case {
    VideoCodec codec;
    const char* extension;
    const char* codecName;
};

// A file named after its case, for pictures of the given size and rate; WMV takes a bit rate.
VideoFileSettings settingsOf(const TempFolder& folder, const char* prefix, const Case& c,
                             QSize size, int rate, int wmvBitRate) {
    return {folder.file(QStringLiteral("%1_%2.%3")
                            .arg(QLatin1String(prefix), QLatin1String(c.codecName),
                                 QLatin1String(c.extension))),
            size.width(),
            size.height(),
            {rate, 1},
            c.codec,
            c.codec == VideoCodec::Wmv2 ? wmvBitRate : 0};
}

void writeAndCheck(const TempFolder& folder, const Case& c) {
    SCOPED_TRACE(std::string(c.codecName) + " in " + c.extension);
    const VideoFileSettings settings = settingsOf(folder, "out", c, {320, 240}, 25, 1'500'000);
    MediaError error;
    auto writer = VideoFileWriter::open(settings, error);
    ASSERT_TRUE(writer) << error.text.toStdString();
    for (int i = 0; i < kFrames; ++i) {
        QImage picture(320, 240, QImage::Format_RGB32);
        picture.fill(colourOf(i));
        ASSERT_TRUE(writer->write(*inputFrame(picture, i), i).ok());
    }
    EXPECT_EQ(writer->framesWritten(), kFrames);
    ASSERT_TRUE(writer->finish().ok());

    const ravelcue::test::VideoProbe probe = ravelcue::test::probeVideo(settings.path);
    EXPECT_EQ(probe.codecName, QLatin1String(c.codecName));
    EXPECT_EQ(QSize(probe.width, probe.height), QSize(320, 240));
    EXPECT_EQ(probe.frameCount, kFrames);
    EXPECT_NEAR(probe.durationSeconds, kFrames / 25.0, 0.041);
    int frames = 0;
    ASSERT_TRUE(ravelcue::test::forEachFrame(settings.path, [&](int i, const QImage& frame) {
        const QColor found = frame.pixelColor(160, 120);
        const QColor expected = colourOf(i);
        EXPECT_LE(std::abs(found.red() - expected.red()) +
                      std::abs(found.green() - expected.green()) +
                      std::abs(found.blue() - expected.blue()),
                  12)
            << "frame " << i;
        ++frames;
    }));
    EXPECT_EQ(frames, kFrames);
}

} // namespace

TEST(VideoFileWriter, EveryCodecAndContainerIsFrameExactAndReadable) {
    const Case cases[] = {
        {VideoCodec::Mjpeg, "avi", "mjpeg"},     {VideoCodec::H264, "avi", "h264"},
        {VideoCodec::Mpeg4, "avi", "mpeg4"},     {VideoCodec::Ffv1, "avi", "ffv1"},
        {VideoCodec::Huffyuv, "avi", "huffyuv"}, {VideoCodec::RawBgr, "avi", "rawvideo"},
        {VideoCodec::Wmv2, "wmv", "wmv2"},       {VideoCodec::H264, "mp4", "h264"},
        {VideoCodec::Mjpeg, "mov", "mjpeg"},     {VideoCodec::Ffv1, "mkv", "ffv1"},
    };
    TempFolder folder;
    // Each file is written and checked on a thread of its own: most of the time goes into
    // starting ffprobe and ffmpeg.
    std::vector<std::future<void>> checks;
    for (const Case& c : cases) {
        checks.push_back(
            std::async(std::launch::async, [&folder, c] { writeAndCheck(folder, c); }));
    }
    for (auto& check : checks) {
        check.get();
    }
}

TEST(VideoFileWriter, GapsKeepTimeAndWhatCannotBeWrittenIsRefused) {
    TempFolder folder;
    VideoFileSettings settings{folder.file(QStringLiteral("gaps.mkv")), 160, 120, {10, 1}};
    MediaError error;
    {
        auto writer = VideoFileWriter::open(settings, error);
        ASSERT_TRUE(writer);
        // Frames 0, 1 and 5: the file lasts six frame periods but holds three pictures.
        QImage picture(160, 120, QImage::Format_RGB32);
        picture.fill(Qt::gray);
        for (int index : {0, 1, 5}) {
            ASSERT_TRUE(writer->write(*frameViewOf(picture), index).ok());
        }
        EXPECT_FALSE(writer->write(*frameViewOf(picture), 4).ok());
        EXPECT_GT(writer->bytesWritten(), 0);
        // Dropped without finish(), as when a recording thread is torn down: still readable.
    }
    const ravelcue::test::VideoProbe probe = ravelcue::test::probeVideo(settings.path);
    EXPECT_EQ(probe.frameCount, 3);
    EXPECT_NEAR(probe.durationSeconds, 0.6, 0.011);

    // A missing folder, an unknown container and an empty picture open nothing.
    for (const auto& [name, width] :
         {std::pair{"missing/folder/x.avi", 160}, {"x.unknownextension", 160}, {"x.avi", 0}}) {
        settings.path = folder.file(QLatin1String(name));
        settings.width = width;
        EXPECT_FALSE(VideoFileWriter::open(settings, error)) << name;
        EXPECT_FALSE(error.ok()) << name;
        EXPECT_FALSE(QFile::exists(settings.path)) << name;
    }
}

// What a recording cut short by a crash keeps: whatever the writer had handed to the file a quarter
// second of video ago is on disk, without finish(). The pictures are small, so the write buffer
// never fills on its own; and it is emptied no more than four times a second, so throughput does
// not suffer.
TEST(VideoFileWriter, WrittenDataReachesTheDiskWithinAQuarterSecondOfVideo) {
    constexpr int kFlushesPerSecond = 4;
    constexpr int kRate = 10;
    constexpr int kSeconds = 4;
    const Case cases[] = {{VideoCodec::Mjpeg, "avi", "mjpeg"},
                          {VideoCodec::H264, "avi", "h264"},
                          {VideoCodec::Ffv1, "mkv", "ffv1"},
                          {VideoCodec::Wmv2, "wmv", "wmv2"}};
    TempFolder folder;
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.codecName) + " in " + c.extension);
        const VideoFileSettings settings = settingsOf(folder, "flush", c, {64, 48}, kRate, 100'000);
        MediaError error;
        auto writer = VideoFileWriter::open(settings, error);
        ASSERT_TRUE(writer) << error.text.toStdString();
        std::vector<std::int64_t> handedOver;
        int flushes = 0;
        std::int64_t before = 0;
        for (int i = 0; i < kRate * kSeconds; ++i) {
            QImage picture(64, 48, QImage::Format_RGB32);
            picture.fill(colourOf(i % kFrames));
            ASSERT_TRUE(writer->write(*frameViewOf(picture), i).ok());
            handedOver.push_back(writer->bytesWritten());
            const auto onDisk =
                static_cast<std::int64_t>(std::filesystem::file_size(settings.path.toStdString()));
            // Emptied: the file grew to all that was handed over.
            flushes += onDisk != before && onDisk == handedOver.back() ? 1 : 0;
            before = onDisk;
            constexpr int kFramesPerFlush = (kRate + kFlushesPerSecond - 1) / kFlushesPerSecond;
            if (i >= kFramesPerFlush) {
                EXPECT_GE(onDisk, handedOver[static_cast<size_t>(i - kFramesPerFlush)])
                    << "frame " << i;
            }
        }
        EXPECT_LE(flushes, kSeconds * kFlushesPerSecond) << "the buffer is emptied too often";
    }
}

// A recording killed outright leaves the file as it stands on disk: what the writer last emptied
// into it, and perhaps part of what followed, when the buffer filled on its own. Such files, cut
// off at moments of a recording and part way into what followed the last refresh, read whole in
// ffprobe and in our reader: the header tells the frames there, to within the quarter second
// between refreshes, and those are all but the last second's at most. The pictures are noise, as
// large as a camera's after compression: an ASF muxer keeps a packet of a few kilobytes to itself
// until it fills, which nearly empty pictures would fill only slowly.
TEST(VideoFileWriter, AFileCutOffBetweenRefreshesReadsWhole) {
    constexpr int kRate = 30;
    constexpr int kCutAfter[] = {20, 37, 55};
    const Case cases[] = {{VideoCodec::Mjpeg, "avi", "mjpeg"},
                          {VideoCodec::H264, "avi", "h264"},
                          {VideoCodec::Ffv1, "avi", "ffv1"},
                          {VideoCodec::Wmv2, "wmv", "wmv2"}};
    TempFolder folder;
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.codecName) + " in " + c.extension);
        const VideoFileSettings settings =
            settingsOf(folder, "cut", c, {160, 120}, kRate, 1'500'000);
        MediaError error;
        auto writer = VideoFileWriter::open(settings, error);
        ASSERT_TRUE(writer) << error.text.toStdString();
        // The file's length when the writer last emptied its buffer.
        std::int64_t refreshed = 0;
        for (int i = 0, cut = 0; i <= kCutAfter[std::size(kCutAfter) - 1]; ++i) {
            QImage picture(160, 120, QImage::Format_RGB32);
            std::uint32_t noise = 2463534242u + std::uint32_t(i);
            for (int y = 0; y < picture.height(); ++y) {
                auto* row = reinterpret_cast<std::uint32_t*>(picture.scanLine(y));
                for (int x = 0; x < picture.width(); ++x) {
                    noise ^= noise << 13;
                    noise ^= noise >> 17;
                    noise ^= noise << 5;
                    row[x] = noise | 0xff000000u;
                }
            }
            ASSERT_TRUE(writer->write(*frameViewOf(picture), i).ok());
            const auto onDisk =
                static_cast<std::int64_t>(std::filesystem::file_size(settings.path.toStdString()));
            if (onDisk == writer->bytesWritten()) {
                refreshed = onDisk;
            }
            if (i != kCutAfter[cut]) {
                continue;
            }
            ++cut;
            QFile file(settings.path);
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            const QByteArray whole = file.readAll();
            std::vector<std::int64_t> lengths{onDisk};
            if (onDisk > refreshed + 1) {
                lengths.push_back((refreshed + onDisk) / 2 | 1);
            }
            for (const std::int64_t length : lengths) {
                SCOPED_TRACE("cut after frame " + std::to_string(i) + " at byte " +
                             std::to_string(length));
                const QString copy =
                    settings.path + QStringLiteral(".%1.").arg(length) + QLatin1String(c.extension);
                QFile out(copy);
                ASSERT_TRUE(out.open(QIODevice::WriteOnly));
                out.write(whole.left(length));
                out.close();
                const ravelcue::test::VideoProbe probe = ravelcue::test::probeVideo(copy);
                ASSERT_TRUE(probe.ok) << probe.errors.toStdString();
                EXPECT_TRUE(probe.errors.isEmpty()) << probe.errors.toStdString();
                EXPECT_GE(probe.frameCount, i + 1 - kRate);
                EXPECT_NEAR(probe.durationSeconds, double(probe.frameCount) / kRate,
                            0.25 + 1.0 / kRate);
                auto reader = VideoFileReader::openIndexed(copy, error);
                ASSERT_TRUE(reader) << error.text.toStdString();
                EXPECT_EQ(reader->index()->count(), probe.frameCount);
            }
        }
        EXPECT_TRUE(writer->finish().ok());
    }
}
