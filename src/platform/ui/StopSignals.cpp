#include "StopSignals.h"

#include <QSocketNotifier>

#if defined(Q_OS_UNIX)
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

namespace ravelcue::ui {

#if defined(Q_OS_UNIX)

namespace {

constexpr std::array kStopSignals{SIGTERM, SIGINT, SIGHUP};

// The pair's two ends: the handler writes into [0], the notifier reads [1]. A signal handler
// can reach nothing but globals.
int signalFds[2] = {-1, -1};

extern "C" void onStopSignal(int signalNumber) {
    const int savedErrno = errno;
    const auto byte = static_cast<unsigned char>(signalNumber);
    // Non-blocking: when the pair is full, enough stops are already waiting to be read.
    [[maybe_unused]] const ssize_t written = ::write(signalFds[0], &byte, 1);
    errno = savedErrno;
}

bool setHandler(int signalNumber, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    return sigaction(signalNumber, &action, nullptr) == 0;
}

} // namespace

StopSignals::StopSignals(QObject* parent)
    : QObject(parent) {
    if (signalFds[0] != -1 || ::socketpair(AF_UNIX, SOCK_STREAM, 0, signalFds) != 0) {
        return;
    }
    for (const int fd : signalFds) {
        ::fcntl(fd, F_SETFD, FD_CLOEXEC);
        ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
    }
    notifier_ = std::make_unique<QSocketNotifier>(signalFds[1], QSocketNotifier::Read);
    connect(notifier_.get(), &QSocketNotifier::activated, this, &StopSignals::readSignals);
    for (const int signalNumber : kStopSignals) {
        setHandler(signalNumber, onStopSignal);
    }
}

StopSignals::~StopSignals() {
    if (!notifier_) {
        return;
    }
    for (const int signalNumber : kStopSignals) {
        setHandler(signalNumber, SIG_DFL);
    }
    notifier_.reset();
    ::close(signalFds[0]);
    ::close(signalFds[1]);
    signalFds[0] = signalFds[1] = -1;
}

void StopSignals::readSignals() {
    unsigned char byte = 0;
    while (::read(signalFds[1], &byte, 1) == 1) {
        emit stopRequested(byte);
    }
}

#else

StopSignals::StopSignals(QObject* parent)
    : QObject(parent) {}
StopSignals::~StopSignals() = default;
void StopSignals::readSignals() {}

#endif

} // namespace ravelcue::ui
