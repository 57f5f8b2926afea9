#include "PlayerTestSupport.h"
#include "platform/media/ffmpeg/FrameIndexing.h"
#include "platform/media/ffmpeg/PlayerWorker.h"
#include "platform/media/ffmpeg/VideoFileReader.h"
#include "support/Ffprobe.h"
#include "support/MediaFiles.h"
#include "support/TempFolder.h"

#include <map>
#include <mutex>

#include <gtest/gtest.h>

using namespace ravelcue::media::ffmpeg;
using namespace ravelcue::test;

namespace {

constexpr double kSameFrame = 0.5;
constexpr auto kPatience = std::chrono::seconds(30);

// A minute of small pictures: long enough that counting its frames takes a while after the open.
const QString kMinute = QStringLiteral("testsrc2=size=176x100:rate=25:duration=60");
const QStringList kH264 = {"-c:v", "libx264", "-preset", "ultrafast", "-bf",
                           "3",    "-g",      "50",      "-pix_fmt",  "yuv420p"};

struct LongFile {
    const char* name;
    const char* file;
    QString source;
    QStringList encoding;
    // Trimmed with stream copy from this second on: an edit list the header does not count.
    const char* trimFrom = nullptr;
};

std::vector<LongFile> longFiles() {
    return {
        {"H264Mp4", "long.mp4", kMinute, kH264},
        {"H264EditListMp4", "cut.mp4", kMinute, kH264, "1.3"},
        // Ends on a keyframe decoded before the B-frame shown ahead of it, so that the last
        // picture comes out only when the decoder is drained.
        {"Mpeg4BFramesAvi",
         "long.avi",
         kMinute,
         {"-c:v", "mpeg4", "-q:v", "5", "-bf", "2", "-g", "12", "-vtag", "DX50"}},
        {"VariableRateMkv", "vfr.mkv",
         kMinute + QStringLiteral(",settb=1/1000,setpts=N*40+mod(N\\,3)*12"),
         kH264 + QStringList{"-fps_mode", "passthrough"}},
    };
}

bool makeLongFile(const TempFolder& folder, const LongFile& kind, const QString& path) {
    if (kind.trimFrom == nullptr) {
        return makeVideo(path, kind.source, kind.encoding);
    }
    const QString whole = folder.file(QStringLiteral("whole.mp4"));
    return makeVideo(whole, kind.source, kind.encoding) &&
           runFfmpeg({"-ss", kind.trimFrom, "-i", whole, "-c", "copy", path});
}

class OpenAtOnce : public ::testing::TestWithParam<LongFile> {
protected:
    TempFolder folder;
};

// Straight after the open, before the player has taken on its frame index, frames far into the
// file, the last one and a time in the middle land on ffmpeg's pictures; the count becomes
// ffprobe's once the index is in.
TEST_P(OpenAtOnce, FarSeeksStraightAfterOpeningLandOnFfmpegsPictures) {
    const LongFile& kind = GetParam();
    const QString path = folder.file(kind.file);
    ASSERT_TRUE(makeLongFile(folder, kind, path));
    const int count = probeVideo(path).frameCount;
    const std::vector<double> times = frameTimesMs(path);
    ASSERT_EQ(static_cast<int>(times.size()), count);
    const int middle = count / 2 + 7;
    const std::vector<int> numbers = {0, middle, count - 1};
    const std::vector<QImage> pictures = extractFrames(path, numbers);
    ASSERT_EQ(pictures.size(), numbers.size());

    for (const int frame : {count - 1, middle}) {
        SCOPED_TRACE(testing::Message() << kind.name << " frame " << frame);
        FfmpegPlayer player;
        ASSERT_TRUE(player.PlayerOpen(path).ok());
        ASSERT_TRUE(player.waitForFrame());
        EXPECT_EQ(meanDifference(player.pictureOnShow(), pictures.front()), 0.0);
        ASSERT_TRUE(showFrame(player, frame));
        EXPECT_EQ(player.PlayerGetFrame(), frame);
        const size_t at = frame == middle ? 1 : 2;
        EXPECT_LT(meanDifference(player.pictureOnShow(), pictures[at]), kSameFrame);
        ASSERT_TRUE(player.waitForLength());
        EXPECT_TRUE(player.lengthExact());
        EXPECT_EQ(player.PlayerGetFrameCount(), count);
    }

    SCOPED_TRACE(testing::Message() << kind.name << " time of frame " << middle);
    FfmpegPlayer player;
    ASSERT_TRUE(player.PlayerOpen(path).ok());
    player.PlayerSetPos(times[static_cast<size_t>(middle)] + 0.5);
    ASSERT_TRUE(player.waitForFrame());
    EXPECT_EQ(player.PlayerGetFrame(), middle);
    EXPECT_LT(meanDifference(player.pictureOnShow(), pictures[1]), kSameFrame);
}

INSTANTIATE_TEST_SUITE_P(Kinds, OpenAtOnce, ::testing::ValuesIn(longFiles()),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

// The player's thread on a source that has only its header's estimate: steps forward are served
// at once, while a seek by time waits for the index and then lands exactly, on a file whose rate
// halves halfway, so that the estimate's even spacing names another frame for that time.
TEST(OpenAtOnceWorker, StepsForwardAtOnceFarSeeksWaitForTheIndex) {
    TempFolder folder;
    const QString path = folder.file("vfr.mkv");
    ASSERT_TRUE(makeVideo(path,
                          QStringLiteral("testsrc2=size=176x100:rate=25:duration=8,settb=1/1000,"
                                         "setpts=if(lt(N\\,100)\\,N*40\\,4000+(N-100)*80)"),
                          kH264 + QStringList{"-fps_mode", "passthrough"}));
    const std::vector<double> times = frameTimesMs(path);
    const int count = static_cast<int>(times.size());
    ASSERT_GT(count, 150);
    ravelcue::media::MediaError error;
    auto source = VideoFileReader::open(path, error);
    ASSERT_TRUE(source);
    ASSERT_FALSE(source->index()->exact());
    auto first = source->next();
    ASSERT_TRUE(first);
    IndexPackets packets;
    ASSERT_TRUE(readIndexPackets(path, packets).ok());

    std::mutex shownMutex;
    std::map<std::int64_t, QImage> shown;
    std::shared_ptr<const FrameIndex> adopted;
    PlayerWorker::Callbacks callbacks;
    callbacks.framePresented = [&](const QImage& picture, std::int64_t frame) {
        std::lock_guard lock(shownMutex);
        shown[frame] = picture;
    };
    callbacks.indexAdopted = [&](std::shared_ptr<const FrameIndex> index) {
        std::lock_guard lock(shownMutex);
        adopted = std::move(index);
    };
    PlayerWorker worker(std::move(source), std::move(*first), std::make_shared<ManualClock>(),
                        std::move(callbacks));
    for (const std::int64_t frame : {1, 2, 3, 10}) {
        worker.seek(frame);
        ASSERT_TRUE(worker.waitSettled(kPatience)) << "step to " << frame;
        EXPECT_EQ(worker.position(), frame);
    }
    const int target = count - 20;
    // Reported near where the player stands, as the estimate may put it.
    worker.seekToTime(times[static_cast<size_t>(target)] + 0.5, 11);
    EXPECT_FALSE(worker.waitSettled(std::chrono::milliseconds(300)))
        << "a seek by time was served before the index came";
    EXPECT_FALSE(worker.index()->exact());
    worker.adoptIndex(packets.build());
    ASSERT_TRUE(worker.waitSettled(kPatience));
    EXPECT_EQ(worker.position(), target);
    EXPECT_TRUE(worker.index()->exact());

    const std::vector<int> numbers = {10, target};
    const std::vector<QImage> pictures = extractFrames(path, numbers);
    ASSERT_EQ(pictures.size(), numbers.size());
    std::lock_guard lock(shownMutex);
    EXPECT_TRUE(adopted && adopted->exact());
    for (size_t i = 0; i < numbers.size(); ++i) {
        SCOPED_TRACE(testing::Message() << "frame " << numbers[i]);
        ASSERT_TRUE(shown.contains(numbers[i]));
        EXPECT_LT(
            meanDifference(shown[numbers[i]].convertToFormat(QImage::Format_RGB32), pictures[i]),
            kSameFrame);
    }
}

} // namespace
