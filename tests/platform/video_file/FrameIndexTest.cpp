#include "platform/media/ffmpeg/FrameIndex.h"

#include <gtest/gtest.h>

extern "C" {
#include <libavutil/avutil.h>
}

using ravelcue::media::ffmpeg::FrameIndex;

namespace {

constexpr AVRational kMilliseconds{1, 1000};
constexpr AVRational k25fps{25, 1};

// Keyframe packets in file order, with these stamps.
std::vector<FrameIndex::Packet>
packets(std::initializer_list<std::pair<std::int64_t, std::int64_t>> ptsAndDts) {
    std::vector<FrameIndex::Packet> list;
    for (const auto& [pts, dts] : ptsAndDts) {
        list.push_back({pts, dts, 0, true, false});
    }
    return list;
}

struct DamagedStamps {
    const char* what;
    std::vector<FrameIndex::Packet> packets;
    AVRational frameRate;
    std::int64_t frames;
    std::vector<double> timesMs; // of every frame
    double durationMs;
};

// Stamps that a damaged file gives: the index counts what it can't trust and stays within the
// film, so that positions, times and the length shown stay those of the frames there are.
TEST(FrameIndex, StampsOfADamagedFileDoNotStretchOrWrapTheFilm) {
    constexpr std::int64_t far = std::int64_t{1} << 62;
    const DamagedStamps cases[] = {
        {"one stamp far beyond the others",
         packets({{0, 0}, {40, 40}, {80, 80}, {far, 120}}),
         k25fps,
         4,
         {0, 40, 80, 120},
         160},
        {"stamps at both ends of the range",
         packets({{-far, 0}, {far, 40}}),
         k25fps,
         2,
         {0, 40},
         80},
    };
    for (const DamagedStamps& c : cases) {
        SCOPED_TRACE(c.what);
        const FrameIndex index(c.packets, kMilliseconds, c.frameRate);
        ASSERT_EQ(index.count(), c.frames);
        for (std::int64_t frame = 0; frame < c.frames; ++frame) {
            EXPECT_DOUBLE_EQ(index.timeMs(frame), c.timesMs[static_cast<std::size_t>(frame)])
                << "frame " << frame;
        }
        EXPECT_DOUBLE_EQ(index.durationMs(), c.durationMs);
        EXPECT_EQ(index.frameAt(index.durationMs()), c.frames - 1);
    }
}

} // namespace
