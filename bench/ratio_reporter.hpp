// Prints the medians as Google Benchmark does, and below them the ratios that say whether something grew out of proportion: a
// machine's speed cancels out within one run.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>

class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(std::vector<Run> const& runs) override;
    void Finalize() override;

private:
    std::map<std::string, double> m_medians;   // seconds, by the benchmark's name
};
