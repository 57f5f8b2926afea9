// A recording killed outright (SIGKILL: no handler runs, nothing is closed): a real child process,
// the whole program recording from the demo cameras or the demo microphone, killed a couple of
// seconds in. What it leaves on disk must read in ffprobe without a complaint and open in the
// program's own player, every frame of it, up to less than a second before the kill; the break
// capture's WAV file must be whole, its header telling the samples it holds.
//
// The child is this test program started again with --child: it runs the program exactly as
// main() does and, once the window is up, starts a recording and prints a line every moment with
// what it has recorded so far. The demo pictures carry the capture clock, so the test knows when
// the newest picture the child had was taken and when the last one in the file was.

#include "RecordingChild.h"
#include "app/Application.h"
#include "app/MainWindow.h"
#include "breakspeed/AudioAnalysis.h"
#include "platform/media/CaptureInstance.h"
#include "platform/media/VideoView.h"
#include "platform/media/audio/WavFileWriter.h"
#include "platform/media/demo/DemoStamp.h"
#include "platform/media/ffmpeg/ImageFrames.h"
#include "platform/media/ffmpeg/VideoFileReader.h"
#include "support/Ffprobe.h"
#include "support/QtPrinters.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <string>
#include <sys/wait.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QPushButton>
#include <QTimer>
#include <QtEndian>

#include <gtest/gtest.h>

namespace ravelcue::test {
namespace {

// The child records this much before it is killed: enough for two flushes of the file.
constexpr int kSecondsBeforeKill = 2;
constexpr int kDemoRate = 30;
constexpr int kLostMsAtMost = 1000;

// The capture clock of the newest picture camera 1 has shown, from the stamp it carries.
std::int64_t newestPictureMs(media::CaptureInstance& cam) {
    const media::DemoStamp stamp = media::readDemoStamp(cam.view()->currentFrame());
    return stamp.valid ? stamp.clockMs : -1;
}

// The child recording a Set from camera 1: "recording <frames written> <frames dropped> <newest
// picture ms>".
void recordVideo(app::MainWindow& window) {
    auto* poll = new QTimer(&window);
    QObject::connect(poll, &QTimer::timeout, &window, [&window] {
        if (!startSetOnCameraOne(window, QStringLiteral("crash"))) {
            return;
        }
        media::CaptureInstance& cam = window.media().cam(0);
        const media::CaptureStats stats = cam.GetCaptureStats();
        std::printf("recording %d %d %lld\n", stats.framesWritten, stats.framesDropped,
                    static_cast<long long>(newestPictureMs(cam)));
        std::fflush(stdout);
    });
    poll->start(20);
}

// The child capturing a break from the demo microphone: "recording <ms since the start>".
void recordBreak(app::MainWindow& window) {
    qobject_cast<QPushButton*>(window.control(QStringLiteral("cmdBreakSpeed")))->click();
    auto* start = qobject_cast<QPushButton*>(window.control(QStringLiteral("cmdStartBreakSpeed")));
    start->click();
    auto* since = new QElapsedTimer;
    since->start();
    auto* poll = new QTimer(&window);
    QObject::connect(poll, &QTimer::timeout, &window, [since] {
        std::printf("recording %lld\n", static_cast<long long>(since->elapsed()));
        std::fflush(stdout);
    });
    poll->start(20);
}

int runChild(int& argc, char** argv, const std::string& mode) {
    app::RunOptions options;
    options.shown = [mode](QMainWindow& shown) {
        auto& window = static_cast<app::MainWindow&>(shown);
        if (mode == "break") {
            recordBreak(window);
        } else {
            recordVideo(window);
        }
    };
    return app::runRavelcue(argc, argv, options);
}

// What the child had recorded when it was last heard from.
struct Progress {
    int framesWritten = 0;
    int framesDropped = 0;
    std::int64_t newestPictureMs = -1;
};

Progress progressOf(const std::string& line) {
    std::istringstream words(line.substr(std::strlen("recording ")));
    Progress progress;
    words >> progress.framesWritten >> progress.framesDropped >> progress.newestPictureMs;
    return progress;
}

// Kills the child with SIGKILL; false when it had ended before.
bool killOutright(Child& child) {
    child.signal(SIGKILL);
    const int status = child.wait();
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

struct Compressor {
    const char* label;
    const char* captureType;
    const char* aviCodec;
    const char* codecName; // as ffprobe names it
    const char* extension;
};

void PrintTo(const Compressor& compressor, std::ostream* out) {
    *out << compressor.label;
}

class KilledRecording : public ::testing::TestWithParam<Compressor> {};

TEST_P(KilledRecording, LeavesAFileThatReadsToWithinASecondOfTheKill) {
    const Compressor& compressor = GetParam();
    ChildHome home;
    home.setting("Capture Type", compressor.captureType);
    home.setting("Avi Codec", compressor.aviCodec);
    Child child(home, "record");
    ASSERT_TRUE(child.running());
    Progress atKill;
    while (atKill.framesWritten < kSecondsBeforeKill * kDemoRate) {
        const std::string line = child.newestLineStartingWith("recording ");
        ASSERT_FALSE(line.empty()) << "the child ended before it recorded";
        atKill = progressOf(line);
    }
    ASSERT_TRUE(killOutright(child)) << "the child ended before the kill";
    ASSERT_GE(atKill.newestPictureMs, 0) << "the child's pictures carry no stamp";

    const QString file =
        QDir(home.videos()).filePath(QStringLiteral("crash(Cam1)") + compressor.extension);
    ASSERT_TRUE(QFile::exists(file));
    const VideoProbe probe = probeVideo(file);
    ASSERT_TRUE(probe.ok) << probe.errors.toStdString();
    EXPECT_EQ(probe.errors, QString());
    EXPECT_EQ(probe.codecName, compressor.codecName);

    media::MediaError error;
    const auto reader = media::ffmpeg::VideoFileReader::openIndexed(file, error);
    ASSERT_NE(reader, nullptr) << error.text.toStdString();
    const std::int64_t frames = reader->index()->count();
    EXPECT_EQ(frames, probe.frameCount) << "the player and ffprobe see different frames";
    // Frame times follow the capture clock, a dropped frame leaving a gap: the writer had been
    // handed this much of the recording, and no more than a second of it may be missing.
    const double handedSeconds = double(atKill.framesWritten + atKill.framesDropped) / kDemoRate;
    const double fileSeconds = reader->index()->durationMs() / 1000;
    EXPECT_GE(fileSeconds, handedSeconds - kLostMsAtMost / 1000.0);
    // The header's length is that of the frames in the file, to within the quarter second between
    // refreshes (an ASF muxer keeps the pictures of its unfinished packet to itself).
    EXPECT_NEAR(probe.durationSeconds, fileSeconds, 0.25 + 1.0 / kDemoRate);

    // Stepped through as the player steps: every frame decodes and is the picture taken at its
    // time, so the last one is where the file says it ends.
    media::ffmpeg::SwsPtr converter;
    std::int64_t stepped = 0;
    std::vector<media::DemoStamp> stamps;
    while (const auto decoded = reader->next()) {
        EXPECT_EQ(decoded->number, stepped);
        ++stepped;
        stamps.push_back(media::readDemoStamp(media::ffmpeg::imageOf(*decoded->frame, converter)));
    }
    ASSERT_EQ(stepped, frames);
    ASSERT_GE(stamps.size(), 2u);
    ASSERT_TRUE(stamps.front().valid && stamps.back().valid);
    const double stampedSeconds = (stamps.back().clockMs - stamps.front().clockMs) / 1000.0;
    EXPECT_NEAR(stampedSeconds + 1.0 / kDemoRate, fileSeconds, 1.5 / kDemoRate);
    RecordProperty("msBeforeTheKill",
                   static_cast<int>(atKill.newestPictureMs - stamps.back().clockMs));
}

INSTANTIATE_TEST_SUITE_P(, KilledRecording,
                         ::testing::Values(Compressor{"MjpegAvi", "AVI", "MJPEG", "mjpeg", ".avi"},
                                           Compressor{"H264Avi", "AVI", "H.264", "h264", ".avi"},
                                           Compressor{"Ffv1Avi", "AVI", "FFV1 (lossless)", "ffv1",
                                                      ".avi"},
                                           Compressor{"Wmv", "WMV", "MJPEG", "wmv2", ".wmv"}),
                         [](const ::testing::TestParamInfo<Compressor>& compressor) {
                             return std::string(compressor.param.label);
                         });

// The sizes a WAV header gives.
struct WavSizes {
    std::uint32_t riff = 0;
    std::uint32_t data = 0;
};

WavSizes wavSizes(const QByteArray& bytes) {
    if (bytes.size() < media::WavFileWriter::kHeaderBytes) {
        return {};
    }
    return {qFromLittleEndian<quint32>(bytes.constData() + 4),
            qFromLittleEndian<quint32>(bytes.constData() + 40)};
}

// Seconds of sound ffprobe finds in a WAV file, reading every packet; negative when it complained.
double ffprobeSeconds(const QString& path) {
    QProcess ffprobe;
    ffprobe.start(QStringLiteral("ffprobe"),
                  {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-count_packets"),
                   QStringLiteral("-show_entries"), QStringLiteral("stream=duration"),
                   QStringLiteral("-of"), QStringLiteral("csv=p=0"), path});
    if (!ffprobe.waitForFinished(-1) || ffprobe.exitCode() != 0 ||
        !ffprobe.readAllStandardError().isEmpty()) {
        return -1;
    }
    return ffprobe.readAllStandardOutput().trimmed().toDouble();
}

TEST(KilledBreakCapture, LeavesAWholeWavFile) {
    ChildHome home;
    Child child(home, "break");
    ASSERT_TRUE(child.running());
    std::int64_t recordedMs = 0;
    while (recordedMs < kSecondsBeforeKill * 1000) {
        const std::string line = child.newestLineStartingWith("recording ");
        ASSERT_FALSE(line.empty()) << "the child ended before it recorded";
        recordedMs = std::stoll(line.substr(std::strlen("recording ")));
    }
    ASSERT_TRUE(killOutright(child)) << "the child ended before the kill";

    const QString path = QDir(home.dataFolder()).filePath(QStringLiteral("breakspeed.wav"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    const WavSizes sizes = wavSizes(bytes);
    constexpr int kFrameBytes = media::WavFileWriter::kChannels * 2;
    constexpr int kBytesPerSecond = media::WavFileWriter::kSampleRate * kFrameBytes;
    const QByteArray plain = media::WavFileWriter::header(0);
    ASSERT_TRUE(bytes.startsWith("RIFF") && bytes.mid(8, 32) == plain.mid(8, 32))
        << "not the plain PCM header";
    EXPECT_EQ(sizes.riff, sizes.data + 36);
    EXPECT_EQ(sizes.data % kFrameBytes, 0u);
    // The header tells every sample but, at most, those of the block being added at the kill.
    const qint64 after = bytes.size() - media::WavFileWriter::kHeaderBytes - qint64(sizes.data);
    EXPECT_GE(after, 0) << "the header tells more than the file holds";
    EXPECT_LT(after, kBytesPerSecond / 10);
    EXPECT_GE(qint64(sizes.data), (recordedMs - kLostMsAtMost) * kBytesPerSecond / 1000);

    const breakspeed::LoadedAudio loaded = breakspeed::LoadAudioFile(path.toStdString());
    ASSERT_EQ(loaded.result, breakspeed::LoadResult::Loaded);
    EXPECT_EQ(qint64(loaded.samples.size()), bytes.size() / 2);
    EXPECT_NEAR(ffprobeSeconds(path), double(sizes.data) / kBytesPerSecond, 0.001);
}

} // namespace
} // namespace ravelcue::test

// This program is both the test and, with --child, the program under test. (Its own main, so the
// test support's main is not linked in.)
int main(int argc, char** argv) {
    return ravelcue::test::testOrChildMain(argc, argv, ravelcue::test::runChild);
}
