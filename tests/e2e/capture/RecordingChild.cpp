#include "RecordingChild.h"

#include "app/MainWindow.h"
#include "core/AppSettings.h"
#include "platform/media/CaptureInstance.h"
#include "platform/media/VideoView.h"
#include "platform/media/ffmpeg/SystemDeviceCatalog.h"
#include "platform/settings/QSettingsStore.h"
#include "support/DemoDeviceSettings.h"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>

#include <gtest/gtest.h>

extern char** environ;

namespace ravelcue::test {

namespace {

QString settingsFile(const TempFolder& home) {
    return home.file(QStringLiteral("config/Ravelcue/Ravelcue.conf"));
}

} // namespace

std::string& childProgramPath() {
    static std::string path;
    return path;
}

int testOrChildMain(int argc, char** argv,
                    int (*runChild)(int& argc, char** argv, const std::string& mode)) {
    childProgramPath() = std::filesystem::read_symlink("/proc/self/exe").string();
    if (argc > 2 && std::strcmp(argv[1], "--child") == 0) {
        return runChild(argc, argv, argv[2]);
    }
    if (std::getenv("QT_QPA_PLATFORM") == nullptr) {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    }
    QApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

ChildHome::ChildHome() {
    QSettingsStore settings(settingsFile(home));
    settings.writeText(kCheckForUpdateSetting, "0");
    settings.writeText("Avi Codec", "MJPEG");
    storeDemoDevices(settings, media::ffmpeg::SystemDeviceCatalog());
    const QString run = home.folder(QStringLiteral("run"));
    QFile::setPermissions(run,
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

void ChildHome::setting(const char* name, const std::string& value) {
    QSettingsStore(settingsFile(home)).writeText(name, value);
}

std::vector<std::string> ChildHome::environment() const {
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

Child::Child(const ChildHome& home, const std::string& mode) {
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
    std::string program = childProgramPath();
    std::string flag = "--child";
    std::string what = mode;
    char* args[] = {program.data(), flag.data(), what.data(), nullptr};
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

Child::~Child() {
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        wait();
    }
    if (out_ >= 0) {
        close(out_);
    }
}

bool Child::nextLine(std::string& line, bool wait) {
    for (;;) {
        const size_t end = pending_.find('\n');
        if (end != std::string::npos) {
            line = pending_.substr(0, end);
            pending_.erase(0, end + 1);
            return true;
        }
        pollfd ready{out_, POLLIN, 0};
        if (!wait && poll(&ready, 1, 0) <= 0) {
            return false;
        }
        char chunk[256];
        const ssize_t got = read(out_, chunk, sizeof chunk);
        if (got <= 0) {
            return false;
        }
        pending_.append(chunk, size_t(got));
    }
}

std::string Child::lineStartingWith(const std::string& prefix) {
    std::string line;
    while (nextLine(line, true)) {
        if (line.rfind(prefix, 0) == 0) {
            return line;
        }
    }
    return {};
}

std::string Child::newestLineStartingWith(const std::string& prefix) {
    std::string newest = lineStartingWith(prefix);
    std::string line;
    while (!newest.empty() && nextLine(line, false)) {
        if (line.rfind(prefix, 0) == 0) {
            newest = line;
        }
    }
    return newest;
}

void Child::signal(int number) const {
    kill(pid_, number);
}

int Child::wait() {
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = -1;
    return status;
}

bool startSetOnCameraOne(app::MainWindow& window, const QString& name) {
    media::CaptureInstance& cam = window.media().cam(0);
    if (cam.IsCapturing()) {
        return true;
    }
    if (cam.view()->pictureSize().isEmpty()) {
        return false;
    }
    for (int i = 1; i < 4; ++i) {
        qobject_cast<QCheckBox*>(window.control(QStringLiteral("chkCapture_%1").arg(i)))
            ->setChecked(false);
    }
    qobject_cast<QCheckBox*>(window.control(QStringLiteral("chkCapture_0")))->setChecked(true);
    qobject_cast<QLineEdit*>(window.control(QStringLiteral("txtFileName")))->setText(name);
    qobject_cast<QPushButton*>(window.control(QStringLiteral("cmdStartCapture")))->click();
    return cam.IsCapturing();
}

} // namespace ravelcue::test
