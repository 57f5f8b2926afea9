#pragma once

#include <functional>

class QMainWindow;

namespace ravelcue::app {

struct RunOptions {
    // Called once, as soon as the main window is on screen (the start-up benchmark uses it).
    std::function<void(QMainWindow&)> shown;
};

// The whole run of the program: one instance per user, the loading popup, start-up, the events,
// the stop. Returns the process's exit code.
int runRavelcue(int& argc, char** argv, const RunOptions& options = {});

} // namespace ravelcue::app
