// The program asked to end by a signal while it records: a real child process, the whole program
// on temporary folders and the demo cameras, sent SIGTERM, SIGINT or SIGHUP mid-recording. It
// must end as Exit ends it (exit code 0) and leave its member files whole: indexed, every frame
// it had written before the signal in them, the length in the header matching the frames.
//
// The child is this test program started again with --child: it runs the program exactly as
// main() does, and once the window is up it ticks camera 1 alone, starts a Set and prints
// "recording" when the first second is on disk.

#include "RecordingChild.h"
#include "app/Application.h"
#include "app/MainWindow.h"
#include "platform/media/CaptureInstance.h"
#include "platform/media/ffmpeg/VideoFileReader.h"
#include "support/Ffprobe.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/wait.h>

#include <QDir>
#include <QFile>
#include <QTimer>
#include <QtEndian>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

constexpr int kFramesBeforeSignal = 30;

// The child: the program as main() runs it, with a recording started as soon as camera 1 shows
// a picture.
int runRecordingChild(int& argc, char** argv, const std::string& /*mode*/) {
    app::RunOptions options;
    options.shown = [](QMainWindow& shown) {
        auto& window = static_cast<app::MainWindow&>(shown);
        auto* poll = new QTimer(&window);
        QObject::connect(poll, &QTimer::timeout, &window, [&window, poll] {
            if (!startSetOnCameraOne(window, QStringLiteral("stop"))) {
                return;
            }
            const int written = window.media().cam(0).GetCaptureStats().framesWritten;
            if (written >= kFramesBeforeSignal) {
                poll->stop();
                std::printf("recording %d\n", written);
                std::fflush(stdout);
            }
        });
        poll->start(20);
    };
    return app::runRavelcue(argc, argv, options);
}

// Whether an AVI file was closed whole: its RIFF size covers the file and it carries its index.
struct AviShape {
    bool riffCoversFile = false;
    bool hasIndex = false;
};

AviShape aviShape(const QString& path) {
    QFile file(path);
    AviShape shape;
    if (!file.open(QIODevice::ReadOnly)) {
        return shape;
    }
    const QByteArray bytes = file.readAll();
    if (bytes.size() < 12 || !bytes.startsWith("RIFF")) {
        return shape;
    }
    // The first RIFF and any OpenDML extensions follow each other to the end of the file.
    qint64 at = 0;
    while (at + 12 <= bytes.size() && bytes.mid(at, 4) == "RIFF") {
        const quint32 size = qFromLittleEndian<quint32>(bytes.constData() + at + 4);
        if (at == 0) {
            // Top-level chunks of the first RIFF: hdrl, movi, idx1.
            for (qint64 c = 12; c + 8 <= 8 + static_cast<qint64>(size) && c + 8 <= bytes.size();) {
                shape.hasIndex = shape.hasIndex || bytes.mid(c, 4) == "idx1";
                const quint32 chunk = qFromLittleEndian<quint32>(bytes.constData() + c + 4);
                c += 8 + chunk + (chunk & 1);
            }
        }
        at += 8 + size + (size & 1);
    }
    shape.riffCoversFile = at == bytes.size();
    return shape;
}

class StopSignal : public ::testing::TestWithParam<int> {};

TEST_P(StopSignal, EndsARecordingWithWholeFilesAndExitsAsExitDoes) {
    ChildHome home;
    Child child(home, "record");
    ASSERT_TRUE(child.running());
    const std::string recording = child.lineStartingWith("recording ");
    ASSERT_FALSE(recording.empty()) << "the child ended before it recorded";
    const int writtenBefore = std::atoi(recording.c_str() + std::strlen("recording "));
    child.signal(GetParam());
    const int status = child.wait();
    ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
    EXPECT_EQ(WEXITSTATUS(status), 0);

    const QString file = QDir(home.videos()).filePath(QStringLiteral("stop(Cam1).avi"));
    ASSERT_TRUE(QFile::exists(file));
    const AviShape shape = aviShape(file);
    EXPECT_TRUE(shape.riffCoversFile);
    EXPECT_TRUE(shape.hasIndex);
    const VideoProbe probe = probeVideo(file);
    ASSERT_TRUE(probe.ok);
    EXPECT_EQ(probe.codecName, "mjpeg");
    EXPECT_GE(probe.frameCount, writtenBefore);
    ASSERT_GT(probe.frameRate, 0);
    // The length the header gives is that of the frames in the file, to within a frame; frames
    // the camera dropped leave their gaps in it.
    media::MediaError error;
    const auto reader = media::ffmpeg::VideoFileReader::openIndexed(file, error);
    ASSERT_NE(reader, nullptr) << error.text.toStdString();
    EXPECT_NEAR(probe.durationSeconds, reader->index()->durationMs() / 1000, 1.0 / probe.frameRate);
}

INSTANTIATE_TEST_SUITE_P(, StopSignal, ::testing::Values(SIGTERM, SIGINT, SIGHUP),
                         [](const ::testing::TestParamInfo<int>& signal) {
                             return std::string(sigabbrev_np(signal.param));
                         });

} // namespace
} // namespace ravelcue::test

// This program is both the test and, with --child, the program under test. (Its own main, so the
// test support's main is not linked in.)
int main(int argc, char** argv) {
    return ravelcue::test::testOrChildMain(argc, argv, ravelcue::test::runRecordingChild);
}
