#include "MarkupsWindow.h"
#include "support/Ffprobe.h"
#include "support/MediaFiles.h"

#include <QCryptographicHash>
#include <QDir>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

constexpr std::int32_t kRed = 255;

QByteArray hashOf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha1);
}

// Close to the colour, as a compressed picture gives it back.
bool near(QRgb pixel, std::int32_t colour) {
    const QColor want = markups::colourOf(colour);
    return std::abs(qRed(pixel) - want.red()) < 60 && std::abs(qGreen(pixel) - want.green()) < 60 &&
           std::abs(qBlue(pixel) - want.blue()) < 60;
}

// The frames of a file whose times fall in the span [start, end): the one on show at the start
// and every later one that starts before the end.
int framesOfSpan(const QString& path, double startMs, double endMs) {
    const std::vector<double> times = frameTimesMs(path);
    int first = 0;
    int last = 0;
    for (int i = 0; i < static_cast<int>(times.size()); ++i) {
        if (times[static_cast<size_t>(i)] <= startMs) {
            first = i;
        }
        if (times[static_cast<size_t>(i)] < endMs) {
            last = i;
        }
    }
    return last - first + 1;
}

TEST(SaveWithMarkups, ARegionOfOneQuadMemberIsSavedWithItsMarkupsAndACancelKeepsTheLastSave) {
    const RecordedSet& set = recordedSet();
    ASSERT_EQ(set.members.size(), 4) << "no recording to save from";
    MarkupsWindow w;
    w.openVideo(w.copySet(set, 0));
    ASSERT_EQ(w.fixture.prompts.texts(), QStringList());
    w.waitShown();
    ASSERT_EQ(w.state().PlayerView, "QuadPlayer");

    // Player 2 (Cam3): a solid red band of lines, and a note.
    const int member = 2;
    const QSize picture = w.view(member).pictureSize();
    w.fixture.click(QStringLiteral("Toolbar2_Color_red"));
    w.tool("Hline");
    for (int y = 100; y < 112; ++y) {
        w.drag(member, {40, double(y)}, {picture.width() - 40.0, double(y)});
    }
    w.tool("Text");
    auto* input = w.dialog("frmTextInput");
    ASSERT_NE(input, nullptr);
    input->findChild<QPlainTextEdit*>("txtNote")->setPlainText(QStringLiteral("WWWWWW"));
    input->findChild<QPushButton*>("cmdOK")->click();
    w.moveTo(member, {60, 260});
    w.press(member, {60, 260});
    w.release(member, {60, 260});
    ASSERT_EQ(w.state().SelectedPlayer, member);

    w.dragTimeline(5, 15, Qt::ShiftModifier, Qt::ShiftModifier);
    ASSERT_TRUE(w.state().RegionActive);
    const double start = w.slider().SelStart() * 100.0;
    const double end = (w.slider().SelStart() + w.slider().SelLength()) * 100.0;

    QDir videos(w.videos(QString()));
    std::vector<QByteArray> members;
    for (int i = 0; i < 4; ++i) {
        members.push_back(hashOf(videos.filePath(QStringLiteral("rally(Cam%1).avi").arg(i + 1))));
    }
    const QString source = videos.filePath(QStringLiteral("rally(Cam3).avi"));
    const QString saved = videos.filePath(QStringLiteral("rally(Cam3)+.avi"));
    auto saving = [&] { return w.dialog("frmSaveProgress") != nullptr; };

    w.fixture.click(QStringLiteral("mnuSaveVideo"));
    ASSERT_TRUE(saving());
    EXPECT_EQ(w.dialog("frmSaveProgress")->findChild<QLabel*>("lblText")->text(),
              QStringLiteral("Saving video with markups. Please standby..."));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !saving(); }, 120000));
    ASSERT_EQ(w.fixture.prompts.texts(), QStringList());

    const VideoProbe probe = probeVideo(saved);
    ASSERT_TRUE(probe.ok);
    const VideoProbe original = probeVideo(source);
    EXPECT_EQ(probe.codecName, original.codecName);
    EXPECT_EQ(probe.frameCount, framesOfSpan(source, start, end));
    const std::vector<int> checked = {0, probe.frameCount / 2, probe.frameCount - 1};
    int seen = 0;
    forEachFrame(saved, [&](int index, const QImage& frame) {
        if (std::find(checked.begin(), checked.end(), index) == checked.end()) {
            return;
        }
        ++seen;
        EXPECT_TRUE(near(frame.pixel(picture.width() / 2, 105), kRed)) << "frame " << index;
        int yellow = 0;
        for (int y = 235; y < 275; ++y) {
            for (int x = 60; x < 200; ++x) {
                yellow += near(frame.pixel(x, y), 65535) ? 1 : 0;
            }
        }
        EXPECT_GT(yellow, 40) << "the note in frame " << index;
    });
    EXPECT_EQ(seen, 3);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(hashOf(videos.filePath(QStringLiteral("rally(Cam%1).avi").arg(i + 1))),
                  members[static_cast<size_t>(i)])
            << "member " << i << " untouched";
    }

    // A second save, cancelled at once, leaves the first as it was and nothing beside it.
    const QByteArray first = hashOf(saved);
    w.fixture.click(QStringLiteral("Toolbar2_Erase"));
    w.fixture.click(QStringLiteral("mnuSaveVideo"));
    ASSERT_TRUE(saving());
    w.dialog("frmSaveProgress")->findChild<QPushButton*>("cmdCancel")->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !saving(); }, 120000));
    EXPECT_EQ(w.fixture.prompts.texts(), QStringList());
    EXPECT_EQ(hashOf(saved), first);
    QStringList left = videos.entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot);
    left.sort();
    QStringList expected{"rally(Cam1).avi", "rally(Cam2).avi", "rally(Cam3).avi",
                         "rally(Cam3)+.avi", "rally(Cam4).avi"};
    expected.sort();
    EXPECT_EQ(left, expected);
}

} // namespace
} // namespace ravelcue::test
