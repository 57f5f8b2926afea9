#pragma once

// The whole program run as a child process of a test, on temporary folders and the demo devices:
// the test program starts itself again with --child, and the child runs the program exactly as
// main() does.

#include "support/TempFolder.h"

#include <string>
#include <sys/types.h>
#include <vector>

namespace ravelcue::app {
class MainWindow;
}

namespace ravelcue::test {

// The test program's own path, for starting it again as the child.
std::string& childProgramPath();

// The main of a program that is both the test and, with --child <mode>, the program under test
// as runChild(argc, argv, mode) runs it.
int testOrChildMain(int argc, char** argv,
                    int (*runChild)(int& argc, char** argv, const std::string& mode));

// A home for the child: settings with the four demo cameras and the demo microphone chosen and
// the first-run question answered, and empty data and runtime folders.
class ChildHome {
public:
    ChildHome();

    // A setting the child starts with.
    void setting(const char* name, const std::string& value);

    QString dataFolder() const { return home.file(QStringLiteral("data/Ravelcue")); }
    QString videos() const { return home.file(QStringLiteral("data/Ravelcue/Videos")); }
    // The environment of a child living here.
    std::vector<std::string> environment() const;

    TempFolder home;
};

// A running child with its standard output on a pipe; its error output goes to a file.
class Child {
public:
    // mode: what the child is to do, handed to it after --child.
    Child(const ChildHome& home, const std::string& mode);
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    bool running() const { return pid_ > 0; }
    // Reads the child's output up to a line starting with prefix; that line, or empty at its end.
    std::string lineStartingWith(const std::string& prefix);
    // The same, then whatever else the child has written by now: the last such line of it.
    std::string newestLineStartingWith(const std::string& prefix);
    void signal(int number) const;
    // Waits for the end; the raw wait status.
    int wait();

private:
    // The next whole line of output; false at its end. Without wait, false too when no whole
    // line has come yet.
    bool nextLine(std::string& line, bool wait);

    pid_t pid_ = -1;
    int out_ = -1;
    std::string pending_;
};

// In the child: ticks camera 1 alone, names the Set `name` and clicks Start Capture once the
// camera shows a picture. True once the camera records.
bool startSetOnCameraOne(app::MainWindow& window, const QString& name);

} // namespace ravelcue::test
