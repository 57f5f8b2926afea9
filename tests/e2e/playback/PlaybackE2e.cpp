#include "PlaybackE2e.h"

#include "platform/media/CaptureInstance.h"
#include "playback/PlaybackRules.h"
#include "support/Ffprobe.h"

#include <algorithm>
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

RecordedSet loadOrRecord() {
    RecordedSet set;
    QDir().mkpath(cacheFolder());
    QLockFile lock(QDir(cacheFolder()).filePath(QStringLiteral("lock")));
    lock.setStaleLockTime(0);
    if (!lock.lock()) {
        ADD_FAILURE() << "cannot lock " << cacheFolder().toStdString();
        return set;
    }
    const QString stampFile = QDir(cacheFolder()).filePath(QStringLiteral("made-by"));
    QFile made(stampFile);
    const bool current = made.open(QIODevice::ReadOnly) && made.readAll() == programStamp();
    made.close();
    if (!current) {
        QFile::remove(stampFile);
        if (!recordThroughTheWindow(set.base, cacheFolder())) {
            return set;
        }
        made.open(QIODevice::WriteOnly);
        made.write(programStamp().toUtf8());
        made.close();
    }
    for (int i = 0; i < 4; ++i) {
        const QString member = QDir(cacheFolder()).filePath(memberName(set.base, i));
        set.members << member;
        set.stamps.push_back(stampsOfFrames(member));
        if (set.stamps.back().empty()) {
            ADD_FAILURE() << "no stamped frames in " << member.toStdString();
            set.members.clear();
            return set;
        }
    }
    return set;
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
