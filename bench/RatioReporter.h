#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

/// What is compared: the medians of two benchmarks of the same run, or a counter of one with its limit alone.
struct Comparison {
    enum class Kind { TimeRatio, CounterDifference, Counter };
    std::string subject;
    std::string peer; ///< Empty for a counter alone.
    double limit = 0;
    Kind kind = Kind::TimeRatio;
    std::string counter{}; ///< Where one is compared.
};

/// Prints the usual table and below it each comparison with its limit.
class RatioReporter final : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override;

    /// Prints @p comparisons. Returns whether all keep their limits.
    [[nodiscard]] bool compare(const std::vector<Comparison>& comparisons) const;

private:
    std::map<std::string, Run> m_medians;
};

/// Runs all benchmarks of the program and compares. Returns the exit status of the program: 1 where a limit
/// is missed.
int runAndCompare(int argc, char* argv[], const std::vector<Comparison>& comparisons);
