#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

/// What is compared: the medians of two benchmarks of the same run.
struct Comparison {
    enum class Kind { TimeRatio, CounterDifference };
    std::string subject;
    std::string peer;
    double limit = 0;
    Kind kind = Kind::TimeRatio;
    std::string counter{}; ///< For a difference.
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
