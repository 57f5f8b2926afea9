#include "SoundServer.h"

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <signal.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <thread>

#include <QEventLoop>
#include <QFileInfo>
#include <QProcess>

extern char** environ;

namespace ravelcue::test {

PrivateSoundServer::PrivateSoundServer()
    : folder_(std::make_unique<TempFolder>()) {
    const std::string dir = folder_->path().toStdString();
    const std::string socket = dir + "/native";
    const std::string protocol = "module-native-protocol-unix auth-anonymous=1 socket=" + socket;
    const char* argv[] = {"pulseaudio",
                          "-n",
                          "--daemonize=no",
                          "--exit-idle-time=-1",
                          "--use-pid-file=no",
                          "--log-target=stderr",
                          "--log-level=0",
                          "-L",
                          protocol.c_str(),
                          "-L",
                          "module-null-sink sink_name=ravelcue_test",
                          nullptr};
    // Its cookie and runtime files go into the test's folder, not the user's.
    setenv("HOME", dir.c_str(), 1);
    setenv("XDG_RUNTIME_DIR", dir.c_str(), 1);
    if (posix_spawnp(&server_, "pulseaudio", nullptr, nullptr, const_cast<char**>(argv), environ) !=
        0) {
        server_ = 0;
        return;
    }
    for (int i = 0; i < 200 && !QFileInfo::exists(QString::fromStdString(socket)); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    running_ = QFileInfo::exists(QString::fromStdString(socket));
    setenv("PULSE_SERVER", ("unix:" + socket).c_str(), 1);
}

PrivateSoundServer::~PrivateSoundServer() {
    if (server_ > 0) {
        kill(server_, SIGTERM);
        waitpid(server_, nullptr, 0);
    }
}

namespace {

// Runs a PulseAudio tool against the server (PULSE_SERVER points at it), with the event loop
// running; its exit code, or -1 when it could not run, and what it printed.
int runTool(const QString& program, const QStringList& arguments, QByteArray* output = nullptr) {
    QProcess process;
    QEventLoop loop;
    QObject::connect(&process, &QProcess::finished, &loop, &QEventLoop::quit);
    QObject::connect(&process, &QProcess::errorOccurred, &loop, &QEventLoop::quit);
    process.start(program, arguments);
    if (process.state() == QProcess::NotRunning && process.error() == QProcess::FailedToStart) {
        return -1;
    }
    loop.exec();
    if (output != nullptr) {
        *output = process.readAllStandardOutput();
    }
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

} // namespace

int PrivateSoundServer::addNullSink(const QString& sink, const QString& description) const {
    QByteArray output;
    const int code = runTool(QStringLiteral("pactl"),
                             {QStringLiteral("load-module"), QStringLiteral("module-null-sink"),
                              QStringLiteral("sink_name=") + sink,
                              QStringLiteral("sink_properties=device.description=") + description},
                             &output);
    bool number = false;
    const int module = output.trimmed().toInt(&number);
    return code == 0 && number ? module : -1;
}

int PrivateSoundServer::addInputOf(const QString& sink, const QString& description) const {
    QByteArray output;
    const int code =
        runTool(QStringLiteral("pactl"),
                {QStringLiteral("load-module"), QStringLiteral("module-remap-source"),
                 QStringLiteral("master=") + sink + QStringLiteral(".monitor"),
                 QStringLiteral("source_name=") + sink + QStringLiteral("_input"),
                 QStringLiteral("source_properties=device.description=") + description},
                &output);
    bool number = false;
    const int module = output.trimmed().toInt(&number);
    return code == 0 && number ? module : -1;
}

bool PrivateSoundServer::removeModule(int module) const {
    return runTool(QStringLiteral("pactl"),
                   {QStringLiteral("unload-module"), QString::number(module)}) == 0;
}

bool PrivateSoundServer::playInto(const QString& sink, const QString& wavFile) const {
    return runTool(QStringLiteral("paplay"), {QStringLiteral("--device=") + sink, wavFile}) == 0;
}

void PrivateSoundServer::silenceProcess() {
    setenv("PULSE_SERVER", "unix:/nonexistent/ravelcue-no-sound", 1);
}

std::vector<qint16> PrivateSoundServer::record(double seconds,
                                               const std::function<void()>& play) const {
    const std::string command = "ffmpeg -nostdin -v fatal -f pulse -i ravelcue_test.monitor -t " +
                                std::to_string(seconds) + " -ac 1 -ar 44100 -f s16le -";
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return {};
    }
    std::vector<qint16> samples;
    std::mutex mutex;
    std::condition_variable started;
    bool ended = false;
    std::thread reader([&] {
        qint16 buffer[1024];
        size_t got = 0;
        while ((got = std::fread(buffer, sizeof(qint16), 1024, pipe)) > 0) {
            std::lock_guard lock(mutex);
            samples.insert(samples.end(), buffer, buffer + got);
            started.notify_all();
        }
        std::lock_guard lock(mutex);
        ended = true;
        started.notify_all();
    });
    {
        // ffmpeg takes a while to start on a busy machine; play only once it listens.
        std::unique_lock lock(mutex);
        started.wait(lock, [&] { return ended || !samples.empty(); });
    }
    play();
    reader.join();
    pclose(pipe);
    return samples;
}

} // namespace ravelcue::test
