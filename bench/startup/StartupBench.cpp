// Time from process start to the main window on screen, with no devices configured, against a
// bare Qt window started the same way. Each run is a new process on a fresh data and settings
// folder; the child prints the monotonic time at which its window is shown.

#include "app/Application.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMainWindow>
#include <QTemporaryDir>
#include <QTimer>

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;

long long nowNs() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now().time_since_epoch())
        .count();
}

void reportShown() {
    std::printf("shown %lld\n", nowNs());
    std::fflush(stdout);
    QCoreApplication::exit(0);
}

int runPeer(int& argc, char** argv) {
    QApplication application(argc, argv);
    QMainWindow window;
    window.resize(973, 740);
    window.show();
    QTimer::singleShot(0, &window, reportShown);
    return QApplication::exec();
}

int runRavelcue(int& argc, char** argv) {
    ravelcue::app::RunOptions options;
    options.shown = [](QMainWindow&) { reportShown(); };
    return ravelcue::app::runRavelcue(argc, argv, options);
}

// Starts this program again as a child of the given kind; returns start-to-shown milliseconds.
double timeChild(const char* self, const char* kind) {
    QTemporaryDir home;
    const QString config = home.filePath(QStringLiteral("config/Ravelcue"));
    QDir().mkpath(config);
    QFile settings(config + QStringLiteral("/Ravelcue.conf"));
    if (settings.open(QIODevice::WriteOnly)) {
        settings.write("[General]\nStartup%20CheckForUpdate%20Enable=0\n");
        settings.close();
    }
    QDir().mkpath(home.filePath(QStringLiteral("run")));
    QFile::setPermissions(home.filePath(QStringLiteral("run")),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    setenv("XDG_CONFIG_HOME", home.filePath(QStringLiteral("config")).toLocal8Bit().constData(), 1);
    setenv("XDG_DATA_HOME", home.filePath(QStringLiteral("data")).toLocal8Bit().constData(), 1);
    setenv("XDG_RUNTIME_DIR", home.filePath(QStringLiteral("run")).toLocal8Bit().constData(), 1);

    int pipeFds[2];
    if (pipe(pipeFds) != 0) {
        return -1;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, pipeFds[0]);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    std::string selfCopy(self);
    std::string kindCopy(kind);
    char* childArgs[] = {selfCopy.data(), kindCopy.data(), nullptr};
    const long long started = nowNs();
    pid_t child = 0;
    const int spawned = posix_spawn(&child, self, &actions, nullptr, childArgs, environ);
    posix_spawn_file_actions_destroy(&actions);
    close(pipeFds[1]);
    if (spawned != 0) {
        close(pipeFds[0]);
        return -1;
    }
    std::string output;
    char buffer[256];
    ssize_t got = 0;
    while ((got = read(pipeFds[0], buffer, sizeof buffer)) > 0) {
        output.append(buffer, static_cast<size_t>(got));
    }
    close(pipeFds[0]);
    int status = 0;
    waitpid(child, &status, 0);
    const size_t at = output.find("shown ");
    if (at == std::string::npos) {
        return -1;
    }
    const long long shown = std::atoll(output.c_str() + at + 6);
    return static_cast<double>(shown - started) / 1e6;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 1 && std::string(argv[1]) == "--child-ravelcue") {
        return runRavelcue(argc, argv);
    }
    if (argc > 1 && std::string(argv[1]) == "--child-peer") {
        return runPeer(argc, argv);
    }
    if (std::getenv("DISPLAY") == nullptr && std::getenv("QT_QPA_PLATFORM") == nullptr) {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    }
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 7;
    std::vector<double> ravelcueMs;
    std::vector<double> peerMs;
    timeChild(argv[0], "--child-ravelcue"); // warm the file cache for both
    timeChild(argv[0], "--child-peer");
    for (int i = 0; i < runs; ++i) {
        ravelcueMs.push_back(timeChild(argv[0], "--child-ravelcue"));
        peerMs.push_back(timeChild(argv[0], "--child-peer"));
    }
    if (std::any_of(ravelcueMs.begin(), ravelcueMs.end(), [](double v) { return v < 0; })) {
        std::fprintf(stderr, "startup_bench: a child did not report its window\n");
        return 1;
    }
    const char* platform = std::getenv("QT_QPA_PLATFORM");
    std::printf("Start-up, process start to main window shown, no devices (%d runs, platform %s)\n",
                runs, platform != nullptr ? platform : "xcb");
    std::printf("  %-28s median %7.1f ms  worst %7.1f ms\n", "Ravelcue", median(ravelcueMs),
                *std::max_element(ravelcueMs.begin(), ravelcueMs.end()));
    std::printf("  %-28s median %7.1f ms  worst %7.1f ms\n", "peer: bare Qt main window",
                median(peerMs), *std::max_element(peerMs.begin(), peerMs.end()));
    std::printf("  ratio Ravelcue / peer: %.2f   target: under 500 ms\n",
                median(ravelcueMs) / median(peerMs));
    return 0;
}
