#include "BenchSupport.h"

#include <algorithm>
#include <cstdio>
#include <numeric>

#include <QProcess>

namespace ravelcue::bench {

double msSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

Figures figuresOf(std::vector<double> samples) {
    Figures figures;
    if (samples.empty()) {
        return figures;
    }
    figures.total = std::accumulate(samples.begin(), samples.end(), 0.0);
    std::sort(samples.begin(), samples.end());
    const size_t middle = samples.size() / 2;
    figures.median =
        samples.size() % 2 ? samples[middle] : (samples[middle - 1] + samples[middle]) / 2;
    figures.worst = samples.back();
    return figures;
}

bool runFfmpeg(const QStringList& arguments) {
    QProcess process;
    process.start(QStringLiteral("ffmpeg"),
                  QStringList{"-nostdin", "-v", "error", "-y"} + arguments);
    return process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit &&
           process.exitCode() == 0;
}

void printRow(const char* what, const Figures& figures, const char* verdict) {
    std::printf("  %-44s median %8.2f ms   worst %8.2f ms  %s\n", what, figures.median,
                figures.worst, verdict);
}

} // namespace ravelcue::bench
