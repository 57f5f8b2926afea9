// Recording file Sets from the demo cameras on the real engine: what lands in Videos, read back
// with ffprobe and by the stamps every demo frame carries (its counter and the capture clock).

#include "app/WindowFixture.h"
#include "core/AppSettings.h"
#include "core/AppState.h"
#include "platform/media/CaptureInstance.h"
#include "platform/media/VideoView.h"
#include "platform/media/demo/DemoStamp.h"
#include "support/Ffprobe.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include <QCheckBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTimer>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

// Panel 5 while recording: "250 frames (2 dropped) - 8.33 sec."
struct ShownCount {
    int frames = -1;
    int dropped = -1;
};

ShownCount shownCount(const QString& panel) {
    static const QRegularExpression pattern(
        QStringLiteral(R"(^(\d+) frames \((\d+) dropped\) - \d+\.\d\d sec\.$)"));
    const QRegularExpressionMatch match = pattern.match(panel);
    if (!match.hasMatch()) {
        return {};
    }
    return {match.captured(1).toInt(), match.captured(2).toInt()};
}

// The stamp of a file's first frame.
media::DemoStamp firstStamp(const QString& path) {
    media::DemoStamp first;
    const bool decoded = forEachFrame(path, [&](int index, const QImage& frame) {
        if (index == 0) {
            first = media::readDemoStamp(frame);
        }
    });
    EXPECT_TRUE(decoded) << path.toStdString();
    return first;
}

class FileSetCapture : public ::testing::Test {
protected:
    FileSetCapture() {
        fixture.answeredUpdateQuestion();
        fixture.enableDemoDevices();
        // A nickname with a space, as people name their cameras.
        fixture.store.writeText(cameraSettingName("CamNickname-", 1), "Break Cam");
        fixture.store.writeText("Avi Codec", "MJPEG");
        fixture.start();
        for (int i = 0; i < 4; ++i) {
            EXPECT_TRUE(WindowFixture::waitForPicture(cam(i).view())) << "camera " << i;
        }
    }

    media::CaptureInstance& cam(int i) { return fixture.window().media().cam(i); }
    AppState& state() { return fixture.window().state(); }
    QPushButton* button() { return fixture.find<QPushButton>("cmdStartCapture"); }
    QString videos() { return fixture.data.file("Ravelcue/Videos"); }
    QString member(const QString& name) { return QDir(videos()).filePath(name); }
    QStringList videoFiles() { return QDir(videos()).entryList(QDir::Files, QDir::Name); }

    void tickOnly(std::initializer_list<int> cameras) {
        for (int i = 0; i < 4; ++i) {
            fixture.find<QCheckBox>(QStringLiteral("chkCapture_%1").arg(i))
                ->setChecked(std::find(cameras.begin(), cameras.end(), i) != cameras.end());
        }
    }
    void start(const QString& name) {
        fixture.find<QLineEdit>("txtFileName")->setText(name);
        fixture.click("cmdStartCapture");
    }
    // Lets the capture run, the blink ticking, until the count shown reaches frames; then ticks
    // it a last time by hand, just after the encoder wrote a frame (so that it holds none), and
    // returns what panel 5 shows.
    ShownCount recordUntil(int frames) {
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return shownCount(fixture.panel(5)).frames >= frames; }, 30000))
            << fixture.panel(5).toStdString();
        fixture.window().findChild<QTimer*>("tmrBlink")->stop();
        const media::CaptureInstance& shown = cam(state().SelectedCam);
        const int written = shown.GetCaptureStats().framesWritten;
        EXPECT_TRUE(QTest::qWaitFor([&] { return shown.GetCaptureStats().framesWritten > written; },
                                    10000));
        fixture.tick("tmrBlink");
        return shownCount(fixture.panel(5));
    }

    WindowFixture fixture{DemoDevices{}};
};

TEST_F(FileSetCapture, SetsRecordInStepAsAviOrWmvAndTheNameIsAskedBeforeItIsReused) {
    tickOnly({1, 3});
    start("set1");
    ASSERT_TRUE(cam(1).IsCapturing() && cam(3).IsCapturing());
    EXPECT_FALSE(cam(0).IsCapturing() || cam(2).IsCapturing());
    EXPECT_EQ(state().SelectedCam, 1) << "the first ticked camera";
    const ShownCount shown = recordUntil(90); // three seconds
    ASSERT_GE(shown.frames, 90) << fixture.panel(5).toStdString();
    auto* countPanel = fixture.find<QLabel>("StatusBar1_5");
    EXPECT_GE(countPanel->width(), countPanel->sizeHint().width()) << "the count is cut off";
    fixture.click("cmdStartCapture");
    ASSERT_EQ(button()->text(), "Start Video Capture");
    EXPECT_EQ(fixture.panel(1), "Capturing Stopped");

    ASSERT_EQ(videoFiles(), (QStringList{"set1(Break Cam).avi", "set1(Cam4).avi"}));
    const media::CaptureStats stats[] = {cam(1).GetCaptureStats(), cam(3).GetCaptureStats()};
    const QString files[] = {member("set1(Break Cam).avi"), member("set1(Cam4).avi")};
    std::vector<media::DemoStamp> firstFrames;
    for (int k = 0; k < 2; ++k) {
        SCOPED_TRACE(files[k].toStdString());
        const VideoProbe probe = probeVideo(files[k]);
        ASSERT_TRUE(probe.ok);
        EXPECT_EQ(probe.formatName, "avi");
        EXPECT_EQ(probe.codecName, "mjpeg");
        EXPECT_EQ(QSize(probe.width, probe.height), QSize(640, 480));
        // Every frame the recording counted is in the file, and no other.
        EXPECT_EQ(probe.frameCount, stats[k].framesWritten);
        firstFrames.push_back(firstStamp(files[k]));
        ASSERT_TRUE(firstFrames.back().valid);
    }
    // The count shown is the selected camera's, sampled by the blink; between the last sample
    // and Stop a frame or two more were taken and written (the window's clock runs fast: the
    // samples lie 10 ms apart here, 500 ms for a person, who sees up to 15 frames fewer).
    EXPECT_LE(shown.frames, stats[0].framesWritten);
    EXPECT_GE(shown.frames, stats[0].framesWritten - 2);
    EXPECT_LE(shown.dropped, stats[0].framesDropped);
    // Released in one loop, the two files begin within a frame of each other. (A member that
    // lost its first frames on a machine too busy to keep up starts with empty slots instead.)
    const auto apart = std::abs(static_cast<std::int64_t>(firstFrames[0].clockMs) -
                                static_cast<std::int64_t>(firstFrames[1].clockMs));
    if (stats[0].framesDropped == 0 && stats[1].framesDropped == 0) {
        EXPECT_LE(apart, 34) << firstFrames[0].clockMs << " and " << firstFrames[1].clockMs;
    }

    // The same name again, answered No: nothing is recorded and nothing deleted.
    const QDateTime written = QFileInfo(files[0]).lastModified();
    fixture.prompts.answerNext(ui::MessageAnswer::No);
    start("set1");
    EXPECT_EQ(fixture.prompts.texts().last(),
              "File already exists. Do you want to overwrite the existing file?");
    EXPECT_EQ(button()->text(), "Start Video Capture");
    EXPECT_FALSE(cam(1).IsCapturing());
    EXPECT_EQ(videoFiles(), (QStringList{"set1(Break Cam).avi", "set1(Cam4).avi"}));
    EXPECT_EQ(QFileInfo(files[0]).lastModified(), written);

    // Answered Yes, every file of the old Set goes, though only camera 4 records now; this time
    // uncompressed, and stopped by the Escape key.
    fixture.window().settings().AviCodec = "None";
    tickOnly({3});
    fixture.prompts.answerNext(ui::MessageAnswer::Yes);
    start("set1");
    ASSERT_TRUE(cam(3).IsCapturing());
    EXPECT_EQ(state().SelectedCam, 3);
    EXPECT_EQ(videoFiles(), QStringList{"set1(Cam4).avi"});
    recordUntil(45);
    QTest::keyClick(&fixture.window(), Qt::Key_Escape);
    EXPECT_EQ(button()->text(), "Start Video Capture");
    EXPECT_FALSE(cam(3).IsCapturing());
    EXPECT_EQ(state().CurrentState, "StopCaptureVideo");

    const VideoProbe raw = probeVideo(member("set1(Cam4).avi"));
    ASSERT_TRUE(raw.ok);
    EXPECT_EQ(raw.formatName, "avi");
    EXPECT_EQ(raw.codecName, "rawvideo");
    EXPECT_EQ(raw.frameCount, cam(3).GetCaptureStats().framesWritten);
    EXPECT_TRUE(firstStamp(member("set1(Cam4).avi")).valid) << "the picture stands upright";

    // WMV members are ASF files of Windows Media Video.
    fixture.window().settings().CaptureType = "WMV";
    tickOnly({0, 2});
    start("wmv");
    ASSERT_TRUE(cam(0).IsCapturing());
    EXPECT_TRUE(fixture.panel(3).startsWith("Profile:")) << fixture.panel(3).toStdString();
    recordUntil(60);
    fixture.click("cmdStartCapture");
    ASSERT_EQ(videoFiles(), (QStringList{"set1(Cam4).avi", "wmv(Cam1).wmv", "wmv(Cam3).wmv"}));
    for (int i : {0, 2}) {
        const QString file = member(QStringLiteral("wmv(Cam%1).wmv").arg(i + 1));
        SCOPED_TRACE(file.toStdString());
        const VideoProbe probe = probeVideo(file);
        ASSERT_TRUE(probe.ok);
        EXPECT_EQ(probe.formatName, "asf");
        EXPECT_EQ(probe.codecName, "wmv2");
        EXPECT_EQ(probe.frameCount, cam(i).GetCaptureStats().framesWritten);
        EXPECT_TRUE(firstStamp(file).valid);
    }
}

} // namespace
} // namespace ravelcue::test
