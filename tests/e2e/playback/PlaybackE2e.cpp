#include "PlaybackE2e.h"

#include "platform/media/CaptureInstance.h"
#include "playback/PlaybackRules.h"
#include "support/Ffprobe.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QLockFile>
#include <QScrollBar>

#include <gtest/gtest.h>

namespace ravelcue::test {

namespace {

constexpr int kRecordMs = 2500;

QString cacheFolder() {
    return QStringLiteral(RAVELCUE_RECORDING_CACHE);
}

QString memberName(const QString& base, int camera) {
    return QStringLiteral("%1(Cam%2).avi").arg(base).arg(camera + 1);
}

// The build of the test program the recording belongs to.
QString programStamp() {
    return QFileInfo(QCoreApplication::applicationFilePath())
        .lastModified()
        .toString(Qt::ISODateWithMs);
}

bool recordThroughTheWindow(const QString& base, const QString& into) {
    WindowFixture fixture{DemoDevices{}};
    fixture.answeredUpdateQuestion();
    fixture.enableDemoDevices();
    // Small files: uncompressed ones would take 80 MB a member.
    fixture.store.writeText("Avi Codec", "MJPEG");
    fixture.start();
    for (int i = 0; i < 4; ++i) {
        if (!WindowFixture::waitForPicture(fixture.window().media().cam(i).view())) {
            ADD_FAILURE() << "demo camera " << i << " shows nothing";
            return false;
        }
    }
    fixture.find<QLineEdit>("txtFileName")->setText(base);
    fixture.click("cmdStartCapture");
    QTest::qWait(kRecordMs);
    fixture.click("cmdStartCapture");
    if (!fixture.prompts.texts().isEmpty()) {
        ADD_FAILURE() << "recording said: " << fixture.prompts.texts().join('\n').toStdString();
        return false;
    }
    const QDir videos(fixture.data.file("Ravelcue/Videos"));
    QDir().mkpath(into);
    for (int i = 0; i < 4; ++i) {
        const QString target = QDir(into).filePath(memberName(base, i));
        QFile::remove(target);
        if (!QFile::copy(videos.filePath(memberName(base, i)), target)) {
            ADD_FAILURE() << "no member " << memberName(base, i).toStdString();
            return false;
        }
    }
    return true;
}

// The stamps of the members in `folder`, empty when a member holds no stamped frame.
RecordedSet readSet(const QString& folder) {
    RecordedSet set;
    for (int i = 0; i < 4; ++i) {
        const QString member = QDir(folder).filePath(memberName(set.base, i));
        set.members << member;
        set.stamps.push_back(stampsOfFrames(member));
        if (set.stamps.back().empty() || !set.stamps.back().front().valid) {
            return {};
        }
    }
    return set;
}

// The playback tests compare the members frame by frame, so they need a Set whose members
// start on the same frame and lost none. A machine busy with other work can miss frames while
// recording; such a take is made again rather than kept.
bool keptUp(const RecordedSet& set) {
    const std::uint32_t first = set.stamps[0].front().frameCounter;
    for (const std::vector<media::DemoStamp>& stamps : set.stamps) {
        const std::uint32_t start = stamps.front().frameCounter;
        if (std::max(start, first) - std::min(start, first) > 1 ||
            stamps.back().frameCounter - start + 1 != stamps.size()) {
            return false;
        }
    }
    return true;
}

RecordedSet loadOrRecord() {
    QDir().mkpath(cacheFolder());
    QLockFile lock(QDir(cacheFolder()).filePath(QStringLiteral("lock")));
    lock.setStaleLockTime(0);
    if (!lock.lock()) {
        ADD_FAILURE() << "cannot lock " << cacheFolder().toStdString();
        return {};
    }
    const QString stampFile = QDir(cacheFolder()).filePath(QStringLiteral("made-by"));
    QFile made(stampFile);
    if (made.open(QIODevice::ReadOnly) && made.readAll() == programStamp()) {
        made.close();
        if (RecordedSet set = readSet(cacheFolder()); !set.members.isEmpty() && keptUp(set)) {
            return set;
        }
    }
    made.close();
    QFile::remove(stampFile);
    constexpr int kTakes = 3;
    for (int take = 1; take <= kTakes; ++take) {
        if (!recordThroughTheWindow(RecordedSet().base, cacheFolder())) {
            return {};
        }
        RecordedSet set = readSet(cacheFolder());
        if (set.members.isEmpty()) {
            ADD_FAILURE() << "no stamped frames in the recording";
            return {};
        }
        if (keptUp(set)) {
            made.open(QIODevice::WriteOnly);
            made.write(programStamp().toUtf8());
            made.close();
            return set;
        }
    }
    ADD_FAILURE() << "in " << kTakes << " takes the four demo cameras never recorded without loss";
    return {};
}

} // namespace

const RecordedSet& recordedSet() {
    static const RecordedSet set = loadOrRecord();
    return set;
}

std::vector<media::DemoStamp> stampsOfFrames(const QString& path) {
    std::vector<media::DemoStamp> stamps;
    forEachFrame(path,
                 [&](int, const QImage& frame) { stamps.push_back(media::readDemoStamp(frame)); });
    return stamps;
}

QString RealPlaybackWindow::copySet(const RecordedSet& set, int pick) {
    QDir().mkpath(videos(QString()));
    for (int i = 0; i < set.members.size(); ++i) {
        QFile::copy(set.members[i], videos(memberName(set.base, i)));
    }
    return videos(memberName(set.base, pick));
}

void RealPlaybackWindow::waitShown() {
    for (int i : playback::activePlayers(state())) {
        EXPECT_TRUE(real(i).waitForFrame()) << "player " << i;
        // Lengths read by the test are the counted ones, not the header's.
        real(i).waitForLength();
    }
    // The pictures reach the views through queued calls.
    QCoreApplication::processEvents();
}

media::DemoStamp RealPlaybackWindow::stampOnShow(int i) {
    return media::readDemoStamp(player(i).view()->currentFrame());
}

int RealPlaybackWindow::counterSpread() {
    std::optional<std::uint32_t> lowest;
    std::optional<std::uint32_t> highest;
    for (int i : playback::activePlayers(state())) {
        const media::DemoStamp stamp = stampOnShow(i);
        if (!stamp.valid) {
            return 1000;
        }
        lowest = std::min(lowest.value_or(stamp.frameCounter), stamp.frameCounter);
        highest = std::max(highest.value_or(stamp.frameCounter), stamp.frameCounter);
    }
    return lowest ? static_cast<int>(*highest - *lowest) : 0;
}

::testing::AssertionResult RealPlaybackWindow::showTheirFrames(const RecordedSet& set) {
    for (int i : playback::activePlayers(state())) {
        const auto frame = static_cast<std::size_t>(player(i).PlayerGetFrame());
        const auto& stamps = set.stamps.at(static_cast<std::size_t>(i));
        if (frame >= stamps.size()) {
            return ::testing::AssertionFailure() << "player " << i << " at frame " << frame;
        }
        const media::DemoStamp shown = stampOnShow(i);
        if (!(shown == stamps[frame])) {
            return ::testing::AssertionFailure()
                   << "player " << i << " says frame " << frame << " (counter "
                   << stamps[frame].frameCounter << ") but shows counter " << shown.frameCounter;
        }
    }
    return ::testing::AssertionSuccess();
}

void RealPlaybackWindow::chooseSpeed(int topIndex) {
    fixture.find<QListWidget>("lstSpeed")->verticalScrollBar()->setValue(topIndex);
}

} // namespace ravelcue::test
