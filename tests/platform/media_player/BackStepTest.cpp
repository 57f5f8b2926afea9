#include "PlayerTestSupport.h"
#include "platform/media/ffmpeg/FrameIndexing.h"
#include "platform/media/ffmpeg/PlayerWorker.h"
#include "platform/media/ffmpeg/VideoFileReader.h"
#include "support/MediaFiles.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

using namespace ravelcue::media::ffmpeg;
using namespace ravelcue::test;

namespace {

constexpr auto kPatience = std::chrono::seconds(30);

// Standing on a frame just after a keyframe, the player decodes the group of pictures before it
// while nobody is waiting, so the steps back across the keyframe find every frame decoded.
TEST(BackStep, TheGroupBeforeIsDecodedAheadWhileStandingStill) {
    TempFolder folder;
    const QString path = folder.file("gops.mp4");
    ASSERT_TRUE(makeVideo(path, QStringLiteral("testsrc2=size=176x100:rate=25:duration=4"),
                          {"-c:v", "libx264", "-preset", "veryfast", "-g", "25", "-keyint_min",
                           "25", "-sc_threshold", "0", "-bf", "3", "-pix_fmt", "yuv420p"}));
    IndexPackets packets;
    ASSERT_TRUE(readIndexPackets(path, packets).ok());
    ravelcue::media::MediaError error;
    auto source = VideoFileReader::open(path, error, packets.build());
    ASSERT_TRUE(source);
    ASSERT_EQ(source->index()->keyframeAtOrBefore(60), 50);
    auto first = source->next();
    ASSERT_TRUE(first);
    std::vector<std::int64_t> shown;
    std::mutex shownMutex;
    PlayerWorker::Callbacks callbacks;
    callbacks.framePresented = [&](const QImage&, std::int64_t frame) {
        std::lock_guard lock(shownMutex);
        shown.push_back(frame);
    };
    PlayerWorker worker(std::move(source), std::move(*first), std::make_shared<ManualClock>(),
                        std::move(callbacks));

    worker.seek(53);
    ASSERT_TRUE(worker.waitSettled(kPatience));
    ASSERT_TRUE(worker.waitIdle(kPatience));
    const std::uint64_t seeks = worker.keyframeSeeks();
    for (std::int64_t frame = 52; frame >= 20; --frame) {
        worker.seek(frame);
        ASSERT_TRUE(worker.waitSettled(kPatience));
        ASSERT_EQ(worker.position(), frame);
    }
    EXPECT_EQ(worker.keyframeSeeks(), seeks) << "a step back waited for a keyframe's decoding";
    std::lock_guard lock(shownMutex);
    EXPECT_EQ(shown.back(), 20);
}

} // namespace
