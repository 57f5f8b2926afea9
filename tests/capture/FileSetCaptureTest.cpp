#include "app/WindowFixture.h"
#include "platform/media/CaptureInstance.h"

#include <unistd.h>

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTimer>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

class FileSetCaptureTest : public ::testing::Test {
protected:
    void startWindow(std::initializer_list<int> cameras) {
        fixture.answeredUpdateQuestion();
        for (int camera : cameras) {
            fixture.enableCamera(camera);
        }
        fixture.start();
        fixture.recorder.clearLog();
    }
    void untick(int camera) {
        fixture.find<QCheckBox>(QStringLiteral("chkCapture_%1").arg(camera))->setChecked(false);
    }
    QPushButton* button() { return fixture.find<QPushButton>("cmdStartCapture"); }
    QLineEdit* fileName() { return fixture.find<QLineEdit>("txtFileName"); }
    void typeName(const QString& name) { fileName()->setText(name); }
    QString videos() { return fixture.data.file("Ravelcue/Videos"); }
    void touch(const QString& name) {
        QFile file(QDir(videos()).filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    AppState& state() { return fixture.window().state(); }

    WindowFixture fixture;
};

TEST_F(FileSetCaptureTest, NameChecksComeInTheirOrderAndShowInRed) {
    startWindow({0, 1});
    untick(0);
    untick(1);
    typeName("match1");
    fixture.click("cmdStartCapture");
    EXPECT_EQ(fixture.prompts.texts(),
              QStringList{"At least 1 camera must be selected for capture."});
    EXPECT_EQ(fileName()->text(), "match1") << "the name stays";

    fixture.find<QCheckBox>("chkCapture_1")->setChecked(true);
    typeName("match(1)");
    fixture.click("cmdStartCapture");
    EXPECT_EQ(fileName()->text(), "Characters \"( ) +\" not allowed in filename");
    EXPECT_EQ(fileName()->palette().color(QPalette::Text), QColor(Qt::red));
    EXPECT_EQ(state().SelectedCam, 1)
        << "the first ticked camera is selected before the name check";
    EXPECT_TRUE(state().CurrentVideoFile.empty());

    // Pressing again without clearing fails on the red text itself.
    fixture.click("cmdStartCapture");
    EXPECT_EQ(fileName()->text(), "Characters \"( ) +\" not allowed in filename");

    QTest::mouseClick(fileName(), Qt::LeftButton);
    EXPECT_EQ(fileName()->text(), "");
    EXPECT_EQ(fileName()->palette().color(QPalette::Text), QColor(Qt::black));
    fixture.click("cmdStartCapture");
    EXPECT_EQ(fileName()->text(), "Please enter a filename for captured video!");
    typeName("please enter a name");
    fixture.click("cmdStartCapture");
    EXPECT_EQ(fileName()->text(), "Please enter a filename for captured video!");
    EXPECT_EQ(state().CurrentVideoFile, "please enter a name");
    EXPECT_EQ(button()->text(), "Start Video Capture");
    EXPECT_TRUE(fixture.recorder.calls("cam1.StartCapture").isEmpty());
}

TEST_F(FileSetCaptureTest, TickedCamerasStartHeldThenAllAreReleasedTogether) {
    startWindow({0, 1, 2, 3});
    untick(0);
    untick(2);
    fixture.store.writeText("Avi Codec", "MJPEG");
    fixture.window().settings().AviCodec = "MJPEG";
    typeName("match1");
    fixture.click("cmdStartCapture");

    EXPECT_EQ(state().SelectedCam, 1);
    EXPECT_EQ(state().CurrentVideoFile, "match1");
    EXPECT_EQ(state().CurrentState, "StartCaptureVideo");
    EXPECT_EQ(state().CameraView, "QuadCamera");
    EXPECT_EQ(fileName()->text(), "") << "the name leaves the box";
    const QString folder = videos();
    EXPECT_EQ(
        fixture.recorder.log().filter(QRegularExpression("Capture|Preview|Compressor")),
        (QStringList{"cam1.SetCaptureFile(" + folder + "/match1(Cam2).avi)",
                     "cam3.SetCaptureFile(" + folder + "/match1(Cam4).avi)", "cam0.SetPreview(0)",
                     "cam1.SetCompressorIndex(0)", "cam1.StartCapture()", "cam1.PauseCapture()",
                     "cam2.SetPreview(0)", "cam3.SetCompressorIndex(0)", "cam3.StartCapture()",
                     "cam3.PauseCapture()", "cam1.ResumeCapture()", "cam3.ResumeCapture()"}));
    EXPECT_EQ(fixture.panel(1), "Capturing Video");
    EXPECT_EQ(fixture.panel(2), "match1.avi");
    EXPECT_EQ(fixture.panel(3), "Codec:MJPEG");
    EXPECT_EQ(fixture.panel(4), "Size:640x480, Fps:30");
    EXPECT_FALSE(fixture.find<QCheckBox>("chkCapture_1")->isEnabled());

    // The blink shows the running count of the selected camera and alternates the caption.
    auto* blink = fixture.window().findChild<QTimer*>("tmrBlink");
    ASSERT_TRUE(blink->isActive());
    blink->stop(); // the ticks below are the test's own
    fixture.tick("tmrBlink");
    EXPECT_EQ(fixture.panel(5), "250 frames (2 dropped) - 8.33 sec.");
    const QString first = button()->text();
    fixture.tick("tmrBlink");
    EXPECT_NE(button()->text(), first);
    if (button()->text() != " ") {
        fixture.tick("tmrBlink");
    }
    ASSERT_EQ(button()->text(), " ");

    // A click on the dark half stops like any other.
    fixture.recorder.clearLog();
    fixture.click("cmdStartCapture");
    EXPECT_EQ(button()->text(), "Start Video Capture");
    EXPECT_EQ(fixture.panel(1), "Capturing Stopped");
    EXPECT_EQ(fixture.panel(2), "match1.avi") << "the other panels keep their text";
    EXPECT_EQ(state().CurrentState, "StopCaptureVideo");
    EXPECT_EQ(fixture.recorder.calls("cam1."), QStringList{"cam1.StopCapture()"});
    EXPECT_EQ(fixture.recorder.calls("cam0."), QStringList{"cam0.SetPreview(1)"});
    EXPECT_TRUE(fixture.find<QCheckBox>("chkCapture_1")->isEnabled());
}

TEST_F(FileSetCaptureTest, EscapeStopsARecordingAndNothingElse) {
    startWindow({0});
    QTest::keyClick(&fixture.window(), Qt::Key_Escape);
    EXPECT_EQ(button()->text(), "Start Video Capture");
    typeName("esc");
    fixture.click("cmdStartCapture");
    ASSERT_EQ(state().CurrentState, "StartCaptureVideo");
    QTest::keyClick(&fixture.window(), Qt::Key_Escape);
    EXPECT_EQ(state().CurrentState, "StopCaptureVideo");
    EXPECT_EQ(fixture.recorder.calls("cam0.StopCapture").size(), 1);
    QTest::keyClick(&fixture.window(), Qt::Key_Escape);
    EXPECT_EQ(fixture.recorder.calls("cam0.StopCapture").size(), 1);
}

TEST_F(FileSetCaptureTest, ExistingFilesAskBeforeTheyGo) {
    startWindow({0});
    fixture.window().settings().CaptureType = "WMV";
    touch("abcd(Cam1).wmv");
    touch("abc.wmv");
    touch("abc(Cam1).avi");
    touch("other(Cam1).wmv");

    fixture.prompts.answerNext(ui::MessageAnswer::No);
    typeName("abc");
    fixture.click("cmdStartCapture");
    EXPECT_EQ(fixture.prompts.texts().last(),
              "File already exists. Do you want to overwrite the existing file?");
    EXPECT_EQ(state().CurrentState, "Live") << "No records nothing";
    EXPECT_EQ(fileName()->text(), "");
    EXPECT_EQ(QDir(videos()).entryList(QDir::Files).size(), 4) << "and deletes nothing";

    fixture.prompts.answerNext(ui::MessageAnswer::Yes);
    typeName("abc");
    fixture.click("cmdStartCapture");
    EXPECT_EQ(QDir(videos()).entryList(QDir::Files),
              (QStringList{"abc(Cam1).avi", "other(Cam1).wmv"}));
    EXPECT_EQ(state().CurrentState, "StartCaptureVideo");
    EXPECT_EQ(fixture.panel(3), "Profile:Video for broadband NTSC (1500 Kbps total)");
    EXPECT_EQ(fixture.panel(4), "");
    EXPECT_EQ(fixture.recorder.calls("cam0.SetProfileIndex"),
              QStringList{"cam0.SetProfileIndex(1)"});
}

TEST_F(FileSetCaptureTest, FoldersAreLeftAloneAndHiddenFilesAsked) {
    startWindow({0});
    // A folder caught by the pattern is no member: the capture starts and the folder stays.
    QDir(videos()).mkdir("abc(Cam1).avi");
    typeName("abc");
    fixture.click("cmdStartCapture");
    EXPECT_EQ(fixture.prompts.texts(), QStringList());
    EXPECT_EQ(state().CurrentState, "StartCaptureVideo");
    EXPECT_TRUE(QFileInfo(QDir(videos()).filePath("abc(Cam1).avi")).isDir());
    fixture.click("cmdStartCapture");
    ASSERT_EQ(state().CurrentState, "StopCaptureVideo");

    // A base starting with a point makes hidden files, and they are asked about too.
    touch(".abc(Cam1).avi");
    fixture.prompts.answerNext(ui::MessageAnswer::No);
    typeName(".abc");
    fixture.click("cmdStartCapture");
    EXPECT_EQ(fixture.prompts.texts(),
              QStringList{"File already exists. Do you want to overwrite the existing file?"});
    EXPECT_TRUE(QFile::exists(QDir(videos()).filePath(".abc(Cam1).avi")));
}

TEST_F(FileSetCaptureTest, AFileThatCannotBeDeletedStopsTheStart) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "root deletes from a read-only folder";
    }
    startWindow({0});
    touch("abc(Cam1).avi");
    QFile::setPermissions(videos(), QFile::ReadOwner | QFile::ExeOwner);
    fixture.prompts.answerNext(ui::MessageAnswer::Yes);
    typeName("abc");
    fixture.click("cmdStartCapture");
    QFile::setPermissions(videos(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    EXPECT_EQ(fixture.prompts.texts().last(), "Error deleting avi files!");
    EXPECT_EQ(fixture.prompts.shown().back().icon, ui::MessageIcon::Critical);
    EXPECT_EQ(state().CurrentState, "Live");
    EXPECT_TRUE(fixture.recorder.calls("cam0.StartCapture").isEmpty());
}

TEST_F(FileSetCaptureTest, UncompressedAviStartsWithoutACompressor) {
    fixture.store.writeText("Video Source-0", "Demo Camera 1");
    startWindow({2});
    typeName("raw");
    fixture.click("cmdStartCapture");
    EXPECT_EQ(fixture.recorder.calls("cam2.S").mid(1, 2),
              (QStringList{"cam2.SetCompressorIndex(-1)", "cam2.StartCaptureUncompressed()"}));
    EXPECT_EQ(fixture.panel(3), "Codec:None");
}

TEST_F(FileSetCaptureTest, AFailedCameraIsNamedAndTheOthersGoOn) {
    fixture.recorder.captureBehaviour()->camerasThatFailToStart = {1};
    startWindow({0, 1, 2});
    typeName("set");
    fixture.click("cmdStartCapture");
    // The message names the camera, then its file and why it failed.
    ASSERT_EQ(fixture.prompts.texts().size(), 1);
    EXPECT_EQ(fixture.prompts.texts()[0],
              "Camera 2 (Cam2) could not start recording.\nCamera 2 (Cam2): Cannot create " +
                  videos() + "/set(Cam2).avi: Permission denied");
    EXPECT_TRUE(fixture.recorder.calls("cam1.ResumeCapture").isEmpty());
    EXPECT_EQ(fixture.recorder.calls("cam2.ResumeCapture").size(), 1);
    EXPECT_EQ(button()->text(), "Stop Video Capture");

    // A camera lost while recording is reported once; the last one lost ends the capture.
    fixture.prompts.clear();
    const media::MediaError lost{media::media_error::DeviceUnavailable, "the camera was unplugged"};
    emit fixture.window().media().cam(0).captureFailed(lost);
    emit fixture.window().media().cam(0).captureFailed(lost);
    ASSERT_EQ(fixture.prompts.texts().size(), 1);
    EXPECT_TRUE(
        fixture.prompts.texts()[0].startsWith("Camera 1 (Cam1) stopped recording: the camera"));
    EXPECT_EQ(state().CurrentState, "StartCaptureVideo");
    emit fixture.window().media().cam(2).captureFailed(lost);
    EXPECT_EQ(button()->text(), "Start Video Capture");
    EXPECT_EQ(state().CurrentState, "StopCaptureVideo");
}

TEST_F(FileSetCaptureTest, AFullDiskStopsEveryCamera) {
    startWindow({0, 3});
    typeName("long");
    fixture.click("cmdStartCapture");
    emit fixture.window().media().cam(3).captureFailed(
        {media::media_error::DiskFull, "No space left on device"});
    EXPECT_EQ(fixture.recorder.calls("cam0.StopCapture").size(), 1);
    EXPECT_EQ(button()->text(), "Start Video Capture");
    EXPECT_TRUE(fixture.prompts.texts().last().startsWith("The disk is full."));
}

TEST_F(FileSetCaptureTest, AFullDiskDuringTheStartStopsEveryCameraToo) {
    startWindow({0, 1, 3});
    typeName("long");
    bool inTheHold = false;
    // Runs at the first event the start serves: inside its two-second hold.
    QTimer::singleShot(0, [&] {
        inTheHold = fixture.recorder.calls("cam3.PauseCapture").size() == 1 &&
                    fixture.recorder.log().filter("ResumeCapture").isEmpty();
        emit fixture.window().media().cam(1).captureFailed(
            {media::media_error::DiskFull, "No space left on device"});
    });
    fixture.click("cmdStartCapture");
    ASSERT_TRUE(inTheHold);
    for (int camera : {0, 1, 3}) {
        EXPECT_EQ(fixture.recorder.calls(QStringLiteral("cam%1.StopCapture").arg(camera)).size(), 1)
            << camera;
    }
    EXPECT_TRUE(fixture.recorder.log().filter("ResumeCapture").isEmpty()) << "nobody records on";
    EXPECT_EQ(button()->text(), "Start Video Capture");
    EXPECT_EQ(state().CurrentState, "StopCaptureVideo");
    ASSERT_EQ(fixture.prompts.texts().size(), 1);
    EXPECT_TRUE(fixture.prompts.texts()[0].startsWith("The disk is full."));
}

TEST_F(FileSetCaptureTest, EveryCameraFailingLeavesNothingRecording) {
    fixture.recorder.captureBehaviour()->camerasThatFailToStart = {0};
    startWindow({0});
    typeName("none");
    fixture.click("cmdStartCapture");
    EXPECT_EQ(button()->text(), "Start Video Capture");
    EXPECT_EQ(state().CurrentState, "StopCaptureVideo");
}

} // namespace
} // namespace ravelcue::test
