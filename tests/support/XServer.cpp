#include "XServer.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace ravelcue::test {

PrivateXServer::PrivateXServer(QSize screen) {
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0) {
        return;
    }
    // Xvfb writes the display number it took to the descriptor it is given, once it listens.
    const std::string fd = std::to_string(pipeEnds[1]);
    const std::string size =
        std::to_string(screen.width()) + "x" + std::to_string(screen.height()) + "x24";
    const char* argv[] = {"Xvfb",      "-displayfd", fd.c_str(), "-screen", "0",    size.c_str(),
                          "-nolisten", "tcp",        "-noreset", "-wr",     nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addclose(&actions, pipeEnds[0]);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    const bool spawned =
        posix_spawnp(&server_, "Xvfb", &actions, nullptr, const_cast<char**>(argv), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    close(pipeEnds[1]);
    if (!spawned) {
        server_ = 0;
        close(pipeEnds[0]);
        return;
    }
    std::string number;
    pollfd wait{pipeEnds[0], POLLIN, 0};
    char c = 0;
    // Up to 30 s for a busy machine; the server says its number on one line.
    while (poll(&wait, 1, 30000) > 0 && read(pipeEnds[0], &c, 1) == 1 && c != '\n') {
        number += c;
    }
    close(pipeEnds[0]);
    if (number.empty()) {
        kill();
        return;
    }
    display_ = QStringLiteral(":%1").arg(QString::fromStdString(number));
}

PrivateXServer::~PrivateXServer() {
    kill();
}

void PrivateXServer::kill() {
    if (server_ > 0) {
        ::kill(server_, SIGKILL);
        waitpid(server_, nullptr, 0);
        server_ = 0;
    }
}

} // namespace ravelcue::test
