#include "platform/media/ffmpeg/FrameIndexCache.h"

#include "PlayerTestSupport.h"
#include "support/Ffprobe.h"
#include "support/MediaFiles.h"
#include "support/TempFolder.h"

#include <functional>
#include <utility>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

using namespace ravelcue::media::ffmpeg;
using namespace ravelcue::test;

namespace {

constexpr double kSameFrame = 0.5;

const QStringList kH264 = {"-c:v", "libx264", "-preset", "ultrafast", "-bf",
                           "3",    "-g",      "25",      "-pix_fmt",  "yuv420p"};

QString pattern(int seconds) {
    return QStringLiteral("testsrc2=size=176x100:rate=25:duration=%1").arg(seconds);
}

class FrameIndexCacheTest : public ::testing::Test {
protected:
    void SetUp() override {
        video = folder.file("clip.mp4");
        ASSERT_TRUE(makeVideo(video, pattern(4), kH264));
        count = probeVideo(video).frameCount;
    }

    // Opens the video in a player of its own that keeps its indexes in the cache; true when the
    // count was exact at once. frames: the count once it is exact.
    bool openedExact(int& frames) {
        FfmpegPlayer player(std::make_shared<SteadyPlaybackClock>(), nullptr, cache);
        if (!player.PlayerOpen(video).ok()) {
            ADD_FAILURE() << "the video did not open";
            return false;
        }
        const bool exact = player.lengthExact();
        EXPECT_TRUE(player.waitForLength());
        frames = player.PlayerGetFrameCount();
        return exact;
    }

    QByteArray entry() const {
        QFile file(cache->entryPath(video));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void writeEntry(const QByteArray& bytes) const {
        QFile file(cache->entryPath(video));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
    }

    TempFolder folder;
    std::shared_ptr<const FrameIndexCache> cache =
        std::make_shared<const FrameIndexCache>(folder.file("cache"));
    QString video;
    int count = 0;
};

// The first open counts the frames and keeps them; the next is exact at once, and the picture
// it lands on for the last frame is ffmpeg's.
TEST_F(FrameIndexCacheTest, AFileOpenedAgainIsExactAtOnce) {
    EXPECT_FALSE(cache->load(video));
    int frames = 0;
    openedExact(frames);
    EXPECT_EQ(frames, count);
    ASSERT_TRUE(cache->load(video));

    FfmpegPlayer player(std::make_shared<SteadyPlaybackClock>(), nullptr, cache);
    ASSERT_TRUE(player.PlayerOpen(video).ok());
    EXPECT_TRUE(player.lengthExact());
    EXPECT_EQ(player.PlayerGetFrameCount(), count);
    ASSERT_TRUE(showFrame(player, count - 1));
    EXPECT_EQ(player.PlayerGetFrame(), count - 1);
    EXPECT_LT(meanDifference(player.pictureOnShow(), extractFrame(video, count - 1)), kSameFrame);
}

// An entry that does not read back whole is no entry: the file is counted anew, exactly, and the
// entry written again.
TEST_F(FrameIndexCacheTest, ADamagedEntryIsPassedOverAndWrittenAgain) {
    int frames = 0;
    openedExact(frames);
    const QByteArray good = entry();
    ASSERT_GT(good.size(), 200);

    struct Damage {
        const char* name;
        std::function<QByteArray(QByteArray)> apply;
    };
    const std::vector<Damage> damages = {
        {"empty", [](QByteArray) { return QByteArray(); }},
        {"cut short", [](QByteArray bytes) { return bytes.left(bytes.size() / 2); }},
        {"last byte gone", [](QByteArray bytes) { return bytes.chopped(1); }},
        {"a byte too many", [](QByteArray bytes) { return bytes + '\0'; }},
        {"a byte changed",
         [](QByteArray bytes) {
             bytes[bytes.size() * 2 / 3] = static_cast<char>(bytes[bytes.size() * 2 / 3] ^ 0x10);
             return bytes;
         }},
        {"another program's file",
         [](QByteArray bytes) {
             bytes.replace(0, 4, "GIF8");
             return bytes;
         }},
    };
    for (const Damage& damage : damages) {
        SCOPED_TRACE(damage.name);
        writeEntry(damage.apply(good));
        EXPECT_FALSE(cache->load(video));
        openedExact(frames);
        EXPECT_EQ(frames, count);
        EXPECT_TRUE(cache->load(video)) << "the entry was not written again";
    }
}

// The entry of a file holds for that file as it was: one written anew at another length, or one
// of the same size touched since, is counted again.
TEST_F(FrameIndexCacheTest, AFileChangedOnDiskIsCountedAgain) {
    int frames = 0;
    openedExact(frames);
    ASSERT_TRUE(openedExact(frames));

    const QDateTime later = QDateTime::currentDateTime().addSecs(60);
    QFile touched(video);
    ASSERT_TRUE(touched.open(QIODevice::ReadWrite));
    ASSERT_TRUE(touched.setFileTime(later, QFileDevice::FileModificationTime));
    touched.close();
    EXPECT_FALSE(cache->load(video)) << "same size, touched since";
    openedExact(frames);
    EXPECT_EQ(frames, count);
    EXPECT_TRUE(openedExact(frames));

    ASSERT_TRUE(QFile::remove(video));
    ASSERT_TRUE(makeVideo(video, pattern(6), kH264));
    const int longer = probeVideo(video).frameCount;
    ASSERT_GT(longer, count);
    EXPECT_FALSE(cache->load(video)) << "written anew at another length";
    openedExact(frames);
    EXPECT_EQ(frames, longer);
    EXPECT_TRUE(openedExact(frames));
    EXPECT_EQ(frames, longer);
}

// The folder keeps within its budget: a new entry pushes out the one used longest ago, and
// reading an entry counts as using it.
TEST(FrameIndexCacheBudget, ANewEntryPushesOutTheOneUsedLongestAgo) {
    TempFolder folder;
    IndexPackets packets;
    packets.packets.assign(400, FrameIndex::Packet{0, 0, 1, true, false});
    for (size_t i = 0; i < packets.packets.size(); ++i) {
        packets.packets[i].pts = packets.packets[i].dts = static_cast<std::int64_t>(i);
    }
    const auto entrySize = [&](const FrameIndexCache& cache, const QString& video) {
        return QFileInfo(cache.entryPath(video)).size();
    };
    const QString first = folder.file("first.mp4");
    const QString second = folder.file("second.mp4");
    const QString third = folder.file("third.mp4");
    const FrameIndexCache measuring(folder.file("measure"));
    ASSERT_TRUE(measuring.store(first, packets));
    const qint64 size = entrySize(measuring, first);
    ASSERT_GT(size, 0);

    const FrameIndexCache cache(folder.file("cache"), size * 5 / 2);
    ASSERT_TRUE(cache.store(first, packets));
    ASSERT_TRUE(cache.store(second, packets));
    const QDateTime now = QDateTime::currentDateTimeUtc();
    for (const auto& [video, age] : {std::pair{first, 100}, std::pair{second, 50}}) {
        QFile entry(cache.entryPath(video));
        ASSERT_TRUE(entry.open(QIODevice::ReadWrite));
        ASSERT_TRUE(entry.setFileTime(now.addSecs(-age), QFileDevice::FileModificationTime));
    }
    ASSERT_TRUE(cache.load(first)) << "read, so used last";

    ASSERT_TRUE(cache.store(third, packets));
    EXPECT_TRUE(cache.load(first));
    EXPECT_FALSE(cache.load(second)) << "used longest ago";
    EXPECT_TRUE(cache.load(third));
}

} // namespace
