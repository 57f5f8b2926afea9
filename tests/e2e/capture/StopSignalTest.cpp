// The program asked to end by a signal while it records: a real child process, the whole program
// on temporary folders and the demo cameras, sent SIGTERM, SIGINT or SIGHUP mid-recording. It
// must end as Exit ends it (exit code 0) and leave its member files whole: indexed, every frame
// it had written before the signal in them, the length in the header matching the frames.
//
// The child is this test program started again with --child: it runs the program exactly as
// main() does, and once the window is up it ticks camera 1 alone, starts a Set and prints
// "recording" when the first second is on disk.

#include "app/Application.h"
#include "app/MainWindow.h"
#include "core/AppSettings.h"
#include "platform/media/CaptureInstance.h"
#include "platform/media/VideoView.h"
#include "platform/media/ffmpeg/SystemDeviceCatalog.h"
#include "platform/settings/QSettingsStore.h"
#include "support/Ffprobe.h"
#include "support/TempFolder.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QtEndian>

#include <gtest/gtest.h>

extern char** environ;

namespace ravelcue::test {
namespace {

constexpr int kFramesBeforeSignal = 30;
std::string selfPath;

// The child: the program as main() runs it, with a recording started as soon as camera 1 shows
// a picture.
int runRecordingChild(int& argc, char** argv) {
    app::RunOptions options;
    options.shown = [](QMainWindow& shown) {
        auto& window = static_cast<app::MainWindow&>(shown);
        auto* poll = new QTimer(&window);
        QObject::connect(poll, &QTimer::timeout, &window, [&window, poll] {
            media::CaptureInstance& cam = window.media().cam(0);
            if (!cam.IsCapturing()) {
                if (cam.view()->pictureSize().isEmpty()) {
                    return;
                }
                for (int i = 1; i < 4; ++i) {
                    qobject_cast<QCheckBox*>(window.control(QStringLiteral("chkCapture_%1").arg(i)))
                        ->setChecked(false);
                }
                qobject_cast<QCheckBox*>(window.control(QStringLiteral("chkCapture_0")))
                    ->setChecked(true);
                qobject_cast<QLineEdit*>(window.control(QStringLiteral("txtFileName")))
                    ->setText(QStringLiteral("stop"));
                qobject_cast<QPushButton*>(window.control(QStringLiteral("cmdStartCapture")))
                    ->click();
                return;
            }
            const int written = cam.GetCaptureStats().framesWritten;
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

// A home for the child: settings with the four demo cameras enabled and the first-run question
// answered, and empty data and runtime folders.
class ChildHome {
public:
    ChildHome() {
        QSettingsStore settings(home.file(QStringLiteral("config/Ravelcue/Ravelcue.conf")));
        settings.writeText(kCheckForUpdateSetting, "0");
        settings.writeText("Avi Codec", "MJPEG");
        const media::ffmpeg::SystemDeviceCatalog devices;
        int camera = 0;
        for (int i = 0; i < devices.VideoDeviceCount() && camera < 4; ++i) {
            const QString name = devices.VideoDeviceName(i);
            if (name.startsWith(QLatin1String("Demo Camera"))) {
                settings.writeText(cameraSettingName("Video Source-", camera),
                                   QStringLiteral("%1(%2)").arg(name).arg(i).toStdString());
                settings.writeText(cameraSettingName("Video Device Index-", camera),
                                   std::to_string(i));
                settings.writeText(cameraSettingName("CamEnable-", camera), "1");
                ++camera;
            }
        }
        const QString run = home.folder(QStringLiteral("run"));
        QFile::setPermissions(run, QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                       QFileDevice::ExeOwner);
    }

    QString videos() const { return home.file(QStringLiteral("data/Ravelcue/Videos")); }

    // The environment of a child living here.
    std::vector<std::string> environment() const {
        std::vector<std::string> env;
        for (char** e = environ; *e != nullptr; ++e) {
            const std::string entry(*e);
            if (entry.rfind("XDG_", 0) != 0 && entry.rfind("QT_QPA_PLATFORM=", 0) != 0) {
                env.push_back(entry);
            }
        }
        env.push_back("QT_QPA_PLATFORM=offscreen");
        env.push_back("XDG_CONFIG_HOME=" + home.file(QStringLiteral("config")).toStdString());
        env.push_back("XDG_DATA_HOME=" + home.file(QStringLiteral("data")).toStdString());
        env.push_back("XDG_RUNTIME_DIR=" + home.file(QStringLiteral("run")).toStdString());
        return env;
    }

    TempFolder home;
};

// A running child with its standard output on a pipe; its error output goes to a file.
class Child {
public:
    explicit Child(const ChildHome& home) {
        int fds[2];
        if (pipe(fds) != 0) {
            return;
        }
        const std::string errors = home.home.file(QStringLiteral("stderr.txt")).toStdString();
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, fds[1], STDOUT_FILENO);
        posix_spawn_file_actions_addclose(&actions, fds[0]);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errors.c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0600);
        std::string program = selfPath;
        std::string flag = "--child";
        char* args[] = {program.data(), flag.data(), nullptr};
        std::vector<std::string> env = home.environment();
        std::vector<char*> envp;
        for (std::string& entry : env) {
            envp.push_back(entry.data());
        }
        envp.push_back(nullptr);
        if (posix_spawn(&pid_, program.c_str(), &actions, nullptr, args, envp.data()) != 0) {
            pid_ = -1;
        }
        posix_spawn_file_actions_destroy(&actions);
        close(fds[1]);
        out_ = fds[0];
    }
    ~Child() {
        if (pid_ > 0) {
            kill(pid_, SIGKILL);
            wait();
        }
        if (out_ >= 0) {
            close(out_);
        }
    }

    bool running() const { return pid_ > 0; }
    // Reads the child's output up to a line starting with prefix; that line, or empty at its end.
    std::string lineStartingWith(const std::string& prefix) {
        std::string line;
        char c = 0;
        while (read(out_, &c, 1) == 1) {
            if (c != '\n') {
                line += c;
            } else if (line.rfind(prefix, 0) == 0) {
                return line;
            } else {
                line.clear();
            }
        }
        return {};
    }
    void signal(int number) const { kill(pid_, number); }
    // Waits for the end; the raw wait status.
    int wait() {
        int status = 0;
        waitpid(pid_, &status, 0);
        pid_ = -1;
        return status;
    }

private:
    pid_t pid_ = -1;
    int out_ = -1;
};

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
    Child child(home);
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
    // The length the header gives is that of the frames in the file, to within a frame.
    EXPECT_NEAR(probe.durationSeconds, probe.frameCount / probe.frameRate, 1.0 / probe.frameRate);
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
    ravelcue::test::selfPath = std::filesystem::read_symlink("/proc/self/exe").string();
    if (argc > 1 && std::strcmp(argv[1], "--child") == 0) {
        return ravelcue::test::runRecordingChild(argc, argv);
    }
    if (std::getenv("QT_QPA_PLATFORM") == nullptr) {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    }
    QApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
