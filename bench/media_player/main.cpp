#include "BenchSupport.h"

#include <cstdio>
#include <cstdlib>

#include <QApplication>
#include <QTemporaryDir>

namespace ravelcue::bench {
int runPlayerBench(const QString& folder);
int runBurnInBench(const QString& folder);
int runPlayerBenchOn(const QString& path);
int runOpenBench();
} // namespace ravelcue::bench

// Generates its media into a temporary folder with the ffmpeg command line, then prints the
// player's figures and the burn-in comparison. Figures depend on the machine's load: run it on
// a quiet machine and compare the ratios, which are measured side by side in the same run.
int main(int argc, char** argv) {
    if (std::getenv("QT_QPA_PLATFORM") == nullptr) {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    }
    QApplication app(argc, argv);
    QTemporaryDir folder;
    if (!folder.isValid()) {
        std::fprintf(stderr, "no temporary folder\n");
        return 1;
    }
    const QStringList arguments = app.arguments();
    const bool onlyBurn = arguments.contains(QStringLiteral("--burn-in"));
    const bool onlyPlayer = arguments.contains(QStringLiteral("--player"));
    if (arguments.contains(QStringLiteral("--open"))) {
        return ravelcue::bench::runOpenBench() == 0 ? 0 : 1; // long files and back steps only
    }
    const qsizetype file = arguments.indexOf(QStringLiteral("--file"));
    if (file > 0 && file + 1 < arguments.size()) {
        return ravelcue::bench::runPlayerBenchOn(
            arguments.at(file + 1)); // the player on your own video
    }
    int failures = 0;
    if (!onlyBurn) {
        failures += ravelcue::bench::runPlayerBench(folder.path());
        failures += ravelcue::bench::runOpenBench();
    }
    if (!onlyPlayer) {
        failures += ravelcue::bench::runBurnInBench(folder.path());
    }
    return failures == 0 ? 0 : 1;
}
