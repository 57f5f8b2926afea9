#pragma once

#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

// Prints each job as the console reporter does and keeps its wall and CPU time per iteration in
// milliseconds, by the job's name without its arguments, for the ratios printed at the end.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    RatioReporter()
        : ConsoleReporter(OO_Tabular) {}
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration) {
                const double perSecond = benchmark::GetTimeUnitMultiplier(run.time_unit);
                const std::string name = run.benchmark_name();
                const std::string job = name.substr(0, name.find('/'));
                milliseconds[job] = run.GetAdjustedRealTime() / perSecond * 1e3;
                cpuMilliseconds[job] = run.GetAdjustedCPUTime() / perSecond * 1e3;
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }
    std::map<std::string, double> milliseconds;
    std::map<std::string, double> cpuMilliseconds;
};
