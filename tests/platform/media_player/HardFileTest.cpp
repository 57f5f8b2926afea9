#include "PlayerTestSupport.h"
#include "platform/media/demo/DemoStamp.h"
#include "platform/media/ffmpeg/CaptureRecorder.h"
#include "support/Ffprobe.h"
#include "support/MediaFiles.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <functional>
#include <map>
#include <random>
#include <thread>

#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <gtest/gtest.h>

using ravelcue::media::CaptureClock;
using ravelcue::media::ffmpeg::CaptureRecorder;
using ravelcue::media::ffmpeg::FfmpegPlayer;
using ravelcue::media::ffmpeg::VideoCodec;
using namespace ravelcue::test;

namespace {

// Neighbouring frames of the pattern differ by 4 and more; the bound only leaves room for a
// scaler build that rounds a little differently from ffmpeg's.
constexpr double kSameFrame = 0.5;

// 4 s of an odd-sized pattern at 25 frames a second: 100 frames.
const QString kPattern = QStringLiteral("testsrc2=size=176x100:rate=25:duration=4");

const QString kOddPattern = QStringLiteral("testsrc2=size=321x241:rate=25:duration=2");
// DV knows only the television sizes.
const QString kDvPattern = QStringLiteral("testsrc2=size=720x576:rate=25:duration=2");

using Maker = std::function<bool(const TempFolder& folder, const QString& path)>;

struct HardFile {
    const char* name;
    const char* file;
    Maker make;
    double sameFrame = kSameFrame;
};

// ffmpeg's scaler dithers pictures of more than 8 bits differently into 24-bit and into 32-bit
// RGB: the same picture differs by up to about one level on average (0.76 for 10-bit HEVC).
// Neighbours still differ by 4.
constexpr double kDitheredFrame = 1.5;
// A damaged picture is concealed from what the decoder held before, which depends on the way the
// player came to it (straight on, or a prefetch from its keyframe): up to about two levels.
constexpr double kConcealedFrame = 3.0;

Maker encoded(const QStringList& encoding, const QString& source = kPattern) {
    return
        [=](const TempFolder&, const QString& path) { return makeVideo(path, source, encoding); };
}

// A clip trimmed with stream copy: the container keeps the packets from the keyframe before
// the cut and an edit list that starts the film at the cut.
Maker trimmed(const QStringList& encoding, const QString& from, const QString& container) {
    return [=](const TempFolder& folder, const QString& path) {
        const QString whole = folder.file(QStringLiteral("whole.") + container);
        return makeVideo(whole, kPattern, encoding) &&
               runFfmpeg({"-ss", from, "-i", whole, "-c", "copy", path});
    };
}

// Pictures whose first stamp is not 0.
Maker startingAt(const QStringList& encoding, const QString& seconds) {
    return encoded(encoding + QStringList{"-output_ts_offset", seconds});
}

// The picture starts later than the sound, as in a camera file whose video comes up late.
Maker videoBehindSound(const QStringList& encoding) {
    return [=](const TempFolder&, const QString& path) {
        return runFfmpeg(QStringList{"-f", "lavfi", "-i", "sine=frequency=440:duration=4",
                                     "-itsoffset", "0.6", "-f", "lavfi", "-i", kPattern, "-map",
                                     "1:v", "-map", "0:a", "-c:a", "aac"} +
                         encoding + QStringList{path});
    };
}

// A whole file made first, then cut down or spoilt the way real files come to be.
Maker madeThen(const QStringList& encoding, const QString& container,
               const std::function<bool(const QString& whole, const QString& path)>& then) {
    return [=](const TempFolder& folder, const QString& path) {
        const QString whole = folder.file(QStringLiteral("whole.") + container);
        return makeVideo(whole, kPattern, encoding) && then(whole, path);
    };
}

// The file as a recording cut off by a crash: its tail, and with it the AVI index, is gone.
bool truncated(const QString& whole, const QString& path) {
    QFile::remove(path);
    return QFile::copy(whole, path) && QFile::resize(path, QFileInfo(whole).size() * 7 / 10);
}

// The file with the middle of one picture between keyframes overwritten, as a bad sector or a
// dropped network packet leaves it.
bool damaged(const QString& whole, const QString& path) {
    QProcess ffprobe;
    ffprobe.start(QStringLiteral("ffprobe"),
                  {"-v", "error", "-select_streams", "v:0", "-show_entries",
                   "packet=pos,size,flags", "-of", "csv=p=0", whole});
    if (!ffprobe.waitForFinished(-1)) {
        return false;
    }
    const QList<QByteArray> packets = ffprobe.readAllStandardOutput().trimmed().split('\n');
    QFile::remove(path);
    if (packets.size() < 10 || !QFile::copy(whole, path)) {
        return false;
    }
    for (auto it = packets.begin() + packets.size() / 2; it != packets.end(); ++it) {
        const QList<QByteArray> fields = it->split(',');
        if (fields.size() < 3 || fields[2].startsWith('K') || fields[0].toInt() < 64) {
            continue; // size, pos, flags
        }
        QFile file(path);
        if (!file.open(QIODevice::ReadWrite) ||
            !file.seek(fields[1].toLongLong() + fields[0].toInt() / 2)) {
            return false;
        }
        file.write(QByteArray(fields[0].toInt() / 4, '\x5a'));
        return true;
    }
    return false;
}

const QStringList kH264 = {"-c:v", "libx264", "-preset", "veryfast", "-bf",
                           "3",    "-g",      "25",      "-pix_fmt", "yuv420p"};
const QStringList kMpeg4 = {"-c:v", "mpeg4", "-q:v", "3", "-bf", "2", "-g", "12"};
const QStringList kMpeg2 = {"-c:v", "mpeg2video", "-q:v", "3", "-bf", "2", "-g", "12"};
const QStringList kHevc = {"-c:v",         "libx265",
                           "-x265-params", "log-level=error:keyint=24:bframes=4",
                           "-pix_fmt",     "yuv420p"};

std::vector<HardFile> hardFiles() {
    return {
        // MPEG-4 Visual with B-frames: the AVI demuxer stamps the B-frame packets only.
        {"Mpeg4BFramesAvi", "mpeg4.avi", encoded(kMpeg4 + QStringList{"-vtag", "DX50"})},
        {"Mpeg4ClosedGopAvi", "mpeg4cgop.avi",
         encoded({"-c:v", "mpeg4", "-q:v", "3", "-bf", "3", "-g", "15", "-flags", "+cgop",
                  "-sc_threshold", "1000000000", "-vtag", "XVID"})},
        // Xvid with B-frames writes them packed: a B-frame rides with the picture before it
        // and a placeholder of a few bytes stands where it was.
        {"XvidPackedAvi", "packed.avi",
         encoded({"-c:v", "libxvid", "-q:v", "3", "-bf", "2", "-g", "12"})},
        {"XvidPackedOneBAvi", "packed1.avi",
         encoded({"-c:v", "libxvid", "-q:v", "4", "-bf", "1", "-g", "10"})},
        {"Mpeg4BFramesMp4", "mpeg4.mp4", encoded(kMpeg4)},
        // Clips trimmed with stream copy.
        {"H264EditListMp4", "cut.mp4", trimmed(kH264, "1.3", "mp4")},
        {"H264EditListMov", "cut.mov", trimmed(kH264, "0.52", "mov")},
        {"HevcEditListMov", "cuthevc.mov", trimmed(kHevc, "0.9", "mov")},
        {"Mpeg4EditListMp4", "cutmpeg4.mp4", trimmed(kMpeg4, "1.1", "mp4")},
        // First stamps other than 0.
        {"H264StartsLateMkv", "late.mkv", startingAt(kH264, "1.5")},
        {"H264StartsLateMp4", "late.mp4", startingAt(kH264, "1.5")},
        {"Mpeg4StartsLateAvi", "late.avi", startingAt(kMpeg4, "1.5")},
        {"H264OddStartMkv", "odd.mkv", startingAt(kH264, "0.777")},
        {"H264OddStartMp4", "odd.mp4", startingAt(kH264, "2.345")},
        {"MjpegOddStartAvi", "odd.avi", startingAt({"-c:v", "mjpeg", "-q:v", "3"}, "0.37")},
        {"H264VideoBehindSoundMp4", "behind.mp4", videoBehindSound(kH264)},
        // Kinds that were exact before.
        {"H264OpenGopPyramidMkv", "opengop.mkv",
         encoded({"-c:v", "libx264", "-preset", "veryfast", "-x264-params",
                  "open-gop=1:b-pyramid=normal:bframes=3:keyint=25", "-pix_fmt", "yuv420p"})},
        {"HevcFourBFramesMp4", "hevc.mp4", encoded(kHevc)},
        {"Vp9Webm", "vp9.webm",
         encoded({"-c:v", "libvpx-vp9", "-deadline", "realtime", "-cpu-used", "8", "-g", "20",
                  "-b:v", "300k"})},
        {"VariableRateMkv", "vfr.mkv",
         encoded(kH264 + QStringList{"-fps_mode", "passthrough"},
                 kPattern + QStringLiteral(",settb=1/1000,setpts=N*40+mod(N\\,3)*12"))},
        {"InterlacedH264Mkv", "interlaced.mkv",
         encoded(kH264 + QStringList{"-x264-params", "interlaced=1:tff=1"})},
        // Kinds players bring from other tools.
        {"H264BFramesAvi", "h264.avi", encoded(kH264)},
        {"Mpeg2Ts", "mpeg2.ts", encoded(kMpeg2)},
        {"Mpeg2M2ts", "mpeg2.m2ts", encoded(kMpeg2)},
        {"Mpeg2Vob", "mpeg2.vob", encoded(kMpeg2)},
        {"Mpeg1Mpg", "mpeg1.mpg",
         encoded({"-c:v", "mpeg1video", "-q:v", "3", "-bf", "2", "-g", "12"})},
        {"H264Ts", "h264.ts", encoded(kH264)},
        {"H264TsStampsWrap", "wrap.ts", startingAt(kH264, "95441")},
        {"Wmv2Wmv", "wmv2.wmv", encoded({"-c:v", "wmv2", "-q:v", "3", "-g", "25"})},
        {"Flv1Flv", "flv1.flv", encoded({"-c:v", "flv", "-q:v", "3", "-g", "25"})},
        {"H264Flv", "h264.flv", encoded(kH264)},
        {"H264NegativeCtsMp4", "negcts.mp4",
         encoded(kH264 + QStringList{"-movflags", "+negative_cts_offsets"})},
        {"H264TwoEditsMp4", "twoedits.mp4",
         madeThen(kH264, "mp4",
                  [](const QString& whole, const QString& path) {
                      return runFfmpeg({"-ss", "1.3", "-i", whole, "-c", "copy",
                                        "-output_ts_offset", "0.6", path});
                  })},
        {"Mpeg4OddSizeAvi", "oddsize.avi", encoded(kMpeg4, kOddPattern)},
        {"H264Yuv422TenBitMkv", "h264hi.mkv",
         encoded({"-c:v", "libx264", "-preset", "veryfast", "-bf", "3", "-g", "25", "-pix_fmt",
                  "yuv422p10le"}),
         kDitheredFrame},
        {"HevcTenBitMp4", "hevc10.mp4",
         encoded(kHevc.mid(0, 4) + QStringList{"-pix_fmt", "yuv420p10le"}), kDitheredFrame},
        {"MjpegWebcamAvi", "webcam.avi",
         encoded({"-c:v", "mjpeg", "-q:v", "3", "-pix_fmt", "yuvj422p"})},
        {"ProresMov", "prores.mov", encoded({"-c:v", "prores_ks", "-profile:v", "0"}),
         kDitheredFrame},
        {"DvAvi", "dv.avi", encoded({"-c:v", "dvvideo", "-pix_fmt", "yuv420p"}, kDvPattern)},
        {"H264DamagedMkv", "damaged.mkv", madeThen(kH264, "mkv", damaged), kConcealedFrame},
        {"Mpeg4DamagedAvi", "damaged.avi", madeThen(kMpeg4, "avi", damaged), kConcealedFrame},
        {"Mpeg4TruncatedAvi", "cutoff.avi", madeThen(kMpeg4, "avi", truncated)},
    };
}

// Frame numbers worth visiting: the edges, around keyframes, random ones, a far jump and back.
std::vector<int> routeThrough(int count, const std::vector<int>& keyframes) {
    std::vector<int> route = {0, 1, 2, count / 2, count - 1, count - 2, 1};
    for (const int key : keyframes) {
        if (key > 0) {
            route.insert(route.end(), {key + 1, key, key - 1, key - 2, key + 2});
        }
    }
    std::mt19937 random(15);
    std::uniform_int_distribution<int> pick(0, count - 1);
    for (int i = 0; i < 8; ++i) {
        route.push_back(pick(random));
    }
    // Steps across a keyframe in the middle, forwards then backwards.
    const auto middle = std::lower_bound(keyframes.begin(), keyframes.end(), count / 2);
    if (middle != keyframes.end()) {
        for (int frame = *middle - 4; frame <= *middle + 3; ++frame) {
            route.push_back(frame);
        }
        for (int frame = *middle + 3; frame >= *middle - 6; --frame) {
            route.push_back(frame);
        }
    }
    route.push_back(count - 1);
    route.push_back(0);
    std::erase_if(route, [count](int frame) { return frame < 0 || frame >= count; });
    return route;
}

class HardFileTest : public ::testing::TestWithParam<HardFile> {
protected:
    TempFolder folder;
};

// Whatever was shown before, frame n shows the n-th picture ffmpeg decodes from the file, at the
// time of that picture counted from the first one, and the file has as many frames as ffprobe
// counts.
TEST_P(HardFileTest, EveryFrameIsTheOneFfmpegDecodes) {
    const HardFile& kind = GetParam();
    const QString path = folder.file(kind.file);
    ASSERT_TRUE(kind.make(folder, path));

    std::vector<QImage> pictures;
    ASSERT_TRUE(
        forEachFrame(path, [&](int, const QImage& picture) { pictures.push_back(picture); }));
    const int count = probeVideo(path).frameCount;
    ASSERT_EQ(static_cast<int>(pictures.size()), count);
    const std::vector<double> times = frameTimesMs(path);
    ASSERT_EQ(static_cast<int>(times.size()), count);

    FfmpegPlayer player;
    ASSERT_TRUE(player.PlayerOpen(path).ok());
    ASSERT_TRUE(player.waitForFrame());
    EXPECT_LE(meanDifference(player.pictureOnShow(), pictures.front()),
              kind.sameFrame == kSameFrame ? 0.0 : kind.sameFrame)
        << "the picture on show right after opening";

    std::map<int, double> misses; // frame -> difference, reported together
    for (const int frame : routeThrough(count, keyframeNumbers(path))) {
        SCOPED_TRACE(testing::Message() << kind.name << " frame " << frame);
        ASSERT_TRUE(showFrame(player, frame));
        ASSERT_EQ(player.PlayerGetFrame(), frame);
        const double difference =
            meanDifference(player.pictureOnShow(), pictures[static_cast<size_t>(frame)]);
        if (difference >= kind.sameFrame) {
            misses[frame] = difference;
        }
        EXPECT_NEAR(player.PlayerGetPos(), times[static_cast<size_t>(frame)], 0.5);
    }
    for (const auto& [frame, difference] : misses) {
        ADD_FAILURE() << kind.name << ": frame " << frame << " differs by " << difference;
    }
    ASSERT_TRUE(player.waitForLength());
    EXPECT_EQ(player.PlayerGetFrameCount(), count);

    // Times land on the frame on show then; the first frame is at 0 whatever the file's stamps.
    for (const int frame : {1, count / 3, count - 1}) {
        SCOPED_TRACE(testing::Message() << kind.name << " time of frame " << frame);
        player.PlayerSetPos(times[static_cast<size_t>(frame)] + 0.5);
        ASSERT_TRUE(player.waitForFrame());
        EXPECT_EQ(player.PlayerGetFrame(), frame);
        EXPECT_LT(meanDifference(player.pictureOnShow(), pictures[static_cast<size_t>(frame)]),
                  kind.sameFrame);
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, HardFileTest, ::testing::ValuesIn(hardFiles()),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

// Our own Set members: the first picture came two slots after the release, and one that went
// missing later leaves a gap. Positions are ffprobe's times counted from the first picture.
class RecordedMemberTest : public ::testing::TestWithParam<VideoCodec> {
protected:
    TempFolder folder;
};

TEST_P(RecordedMemberTest, PositionsCountFromTheFirstPicture) {
    using namespace std::chrono_literals;
    constexpr auto kSlot = 100ms; // ten frames a second
    const QString path = folder.file("member.avi");
    ravelcue::media::MediaError error;
    auto recorder = CaptureRecorder::start({path, 160, 120, {10, 1}, GetParam()}, {}, error);
    ASSERT_TRUE(recorder) << error.text.toStdString();
    const auto released = CaptureClock::now();
    std::this_thread::sleep_for(12 * kSlot);
    for (const int slot : {2, 3, 4, 6, 7, 8, 9, 10, 11}) {
        QImage picture(160, 120, QImage::Format_RGB32);
        picture.fill(QColor::fromHsv(slot * 30, 200, 200));
        ravelcue::media::drawDemoStampBand(picture, static_cast<std::uint32_t>(slot), 0);
        recorder->offer(picture, released + slot * kSlot + kSlot / 2);
    }
    ASSERT_TRUE(recorder->stop().ok());

    std::vector<QImage> pictures;
    ASSERT_TRUE(forEachFrame(path, QSize(160, 120),
                             [&](int, const QImage& picture) { pictures.push_back(picture); }));
    const std::vector<double> times = frameTimesMs(path);
    ASSERT_EQ(times.size(), pictures.size());
    ASSERT_EQ(static_cast<int>(pictures.size()), probeVideo(path).frameCount);
    // AVI holds no offset before its first picture: that one sits at 0 and the slots it came
    // late by widen the gap after it, so from the second picture on the member is in step with
    // one that started on time.
    EXPECT_NEAR(times[1], 300.0, 0.5);

    FfmpegPlayer player;
    ASSERT_TRUE(player.PlayerOpen(path).ok());
    ASSERT_TRUE(player.waitForLength());
    EXPECT_EQ(player.PlayerGetFrameCount(), static_cast<int>(pictures.size()));
    for (const int frame : {static_cast<int>(pictures.size()) - 1, 0, 3, 2, 1}) {
        SCOPED_TRACE(testing::Message() << "frame " << frame);
        ASSERT_TRUE(showFrame(player, frame));
        EXPECT_NEAR(player.PlayerGetPos(), times[static_cast<size_t>(frame)], 0.5);
        EXPECT_LT(meanDifference(player.pictureOnShow(), pictures[static_cast<size_t>(frame)]),
                  kSameFrame);
    }
    player.PlayerSetPos(times[3]);
    ASSERT_TRUE(player.waitForFrame());
    EXPECT_EQ(player.PlayerGetFrame(), 3);
}

INSTANTIATE_TEST_SUITE_P(Codecs, RecordedMemberTest,
                         ::testing::Values(VideoCodec::Mjpeg, VideoCodec::Mpeg4, VideoCodec::H264),
                         [](const auto& parameter) {
                             switch (parameter.param) {
                             case VideoCodec::Mjpeg:
                                 return std::string("Mjpeg");
                             case VideoCodec::Mpeg4:
                                 return std::string("Mpeg4");
                             default:
                                 return std::string("H264");
                             }
                         });

} // namespace
