#include "bench/RatioReporter.h"

#include <cstdio>

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        if (run.aggregate_name == "median")
            m_medians[run.run_name.function_name] = run;
    }
    ConsoleReporter::ReportRuns(runs);
}

bool RatioReporter::compare(const std::vector<Comparison>& comparisons) const {
    bool allKept = true;
    for (const Comparison& c : comparisons) {
        const auto subject = m_medians.find(c.subject);
        const auto peer = m_medians.find(c.peer);
        if (subject == m_medians.end() || peer == m_medians.end())
            continue; // filtered out on the command line
        const bool isRatio = c.kind == Comparison::Kind::TimeRatio;
        const double value =
            isRatio ? subject->second.GetAdjustedRealTime() / peer->second.GetAdjustedRealTime()
                    : subject->second.counters.at(c.counter) - peer->second.counters.at(c.counter);
        const bool kept = value <= c.limit;
        allKept = allKept && kept;
        std::printf("%s %s %s: %.2f%s (limit %.2f) %s\n", c.subject.c_str(), isRatio ? "/" : "-",
                    c.peer.c_str(), value, isRatio ? "" : (' ' + c.counter).c_str(), c.limit,
                    kept ? "ok" : "MISSED");
    }
    return allKept;
}

int runAndCompare(int argc, char* argv[], const std::vector<Comparison>& comparisons) {
    // In turn and at random, so that a machine that drifts does so for both sides.
    std::vector<char*> arguments(argv, argv + argc);
    std::string interleaved = "--benchmark_enable_random_interleaving=true";
    std::string aggregatesOnly = "--benchmark_report_aggregates_only=true";
    arguments.insert(arguments.begin() + 1, {interleaved.data(), aggregatesOnly.data()});
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return reporter.compare(comparisons) ? 0 : 1;
}
