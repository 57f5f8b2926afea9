#pragma once

#include <chrono>
#include <vector>

#include <QString>
#include <QStringList>

namespace ravelcue::bench {

using Clock = std::chrono::steady_clock;

double msSince(Clock::time_point start);

// Median and worst of a series of milliseconds.
struct Figures {
    double median = 0;
    double worst = 0;
    double total = 0;
};
Figures figuresOf(std::vector<double> samples);

// Runs the ffmpeg command line quietly; true on success.
bool runFfmpeg(const QStringList& arguments);

void printRow(const char* what, const Figures& figures, const char* verdict = "");

} // namespace ravelcue::bench
