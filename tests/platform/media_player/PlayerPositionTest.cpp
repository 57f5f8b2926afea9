#include "PlayerTestSupport.h"
#include "support/Ffprobe.h"
#include "support/MediaFiles.h"
#include "support/TempFolder.h"

#include <cmath>

#include <gtest/gtest.h>

using ravelcue::media::ffmpeg::FfmpegPlayer;
using namespace ravelcue::test;

namespace {

// Our pictures come out of the same scaler with the same settings as ffmpeg's and match them
// pixel for pixel; the bound only leaves room for a scaler build that rounds a little
// differently. Neighbouring frames of these test patterns differ by 4 and more.
constexpr double kSameFrame = 0.5;

struct Format {
    const char* name;
    const char* file;
    QString source;
    QStringList encoding;
};

// Small pictures of an odd shape, 2 s each; the H.264 and HEVC files reorder frames
// (B-frames) and carry a keyframe every 12 frames.
const QString kPattern = QStringLiteral("testsrc2=size=176x100:rate=25:duration=2");
const QString kVariableRate = kPattern + QStringLiteral(",settb=1/1000,setpts=N*40+mod(N\\,3)*12");

std::vector<Format> formats() {
    const QStringList h264 = {"-c:v", "libx264", "-bf", "3", "-g", "12", "-pix_fmt", "yuv420p"};
    return {
        {"MjpegAvi", "mjpeg.avi", kPattern, {"-c:v", "mjpeg", "-q:v", "3"}},
        {"H264Avi", "h264.avi", kPattern, h264},
        {"Mpeg4Avi", "mpeg4.avi", kPattern, {"-c:v", "mpeg4", "-q:v", "3", "-g", "12"}},
        {"H264Mp4", "h264.mp4", kPattern, h264},
        {"HevcMov",
         "hevc.mov",
         kPattern,
         {"-c:v", "libx265", "-x265-params", "log-level=error:keyint=12:bframes=3", "-pix_fmt",
          "yuv420p"}},
        {"Wmv2Asf", "wmv2.wmv", kPattern, {"-c:v", "wmv2", "-b:v", "2M", "-g", "12"}},
        {"H264Mkv", "h264.mkv", kPattern, h264},
        {"VariableRateMp4", "vfr.mp4", kVariableRate,
         h264 + QStringList{"-fps_mode", "passthrough"}},
    };
}

class PlayerPositionTest : public ::testing::TestWithParam<Format> {
protected:
    TempFolder folder;
};

// Steps, jumps and steps back (across keyframes) land on the very frame ffmpeg's select filter
// numbers the same, and times map to the frame on show at that time.
TEST_P(PlayerPositionTest, FramesAndTimesMatchFfmpeg) {
    const Format& format = GetParam();
    const QString path = folder.file(format.file);
    ASSERT_TRUE(makeVideo(path, format.source, format.encoding));
    const int count = probeVideo(path).frameCount;
    const std::vector<double> times = frameTimesMs(path);
    ASSERT_EQ(static_cast<int>(times.size()), count);

    FfmpegPlayer player;
    ASSERT_TRUE(player.PlayerOpen(path).ok());
    ASSERT_TRUE(player.waitForLength());
    EXPECT_EQ(player.PlayerGetFrameCount(), count);
    EXPECT_EQ(player.PlayerGetSize(), QSize(176, 100));
    EXPECT_EQ(player.PlayerGetFrame(), 0.0);

    const std::vector<int> route = {0,  1,  2,  3,         30, 29, 25, 24,
                                    23, 22, 47, count - 1, 11, 13, 12, 5};
    const std::vector<QImage> expected = extractFrames(path, route);
    ASSERT_EQ(expected.size(), route.size());
    for (size_t i = 0; i < route.size(); ++i) {
        SCOPED_TRACE(testing::Message() << format.name << " frame " << route[i]);
        ASSERT_TRUE(showFrame(player, route[i]));
        EXPECT_EQ(player.PlayerGetFrame(), route[i]);
        EXPECT_LT(meanDifference(player.pictureOnShow(), expected[i]), kSameFrame);
        EXPECT_NEAR(player.PlayerGetPos(), times[static_cast<size_t>(route[i])], 0.5);
    }

    // A time between two frames shows the earlier; the nudge by a millisecond stays put.
    for (const int frame : {7, 20, 40}) {
        SCOPED_TRACE(testing::Message() << format.name << " time of frame " << frame);
        const double at = times[static_cast<size_t>(frame)];
        player.PlayerSetPos(at - 1.0);
        EXPECT_EQ(player.PlayerGetFrame(), frame - 1);
        player.PlayerSetPos(at);
        EXPECT_EQ(player.PlayerGetFrame(), frame);
        player.PlayerSetPos(player.PlayerGetPos() + 1);
        EXPECT_EQ(player.PlayerGetFrame(), frame);
    }
    EXPECT_NEAR(player.PlayerGetDuration(), times.back() + (times.back() - times[times.size() - 2]),
                45.0);
}

INSTANTIATE_TEST_SUITE_P(Formats, PlayerPositionTest, ::testing::ValuesIn(formats()),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

} // namespace
