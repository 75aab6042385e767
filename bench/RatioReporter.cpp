#include "bench/RatioReporter.h"

#include <cstdio>

namespace {

double valueOf(const Comparison& comparison, const RatioReporter::Run& subject,
               const RatioReporter::Run& peer) {
    switch (comparison.kind) {
    case Comparison::Kind::TimeRatio:
        return subject.GetAdjustedRealTime() / peer.GetAdjustedRealTime();
    case Comparison::Kind::CounterDifference:
        return subject.counters.at(comparison.counter) - peer.counters.at(comparison.counter);
    case Comparison::Kind::Counter:
        return subject.counters.at(comparison.counter);
    }
    return 0;
}

} // namespace

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
        const bool isAlone = c.kind == Comparison::Kind::Counter;
        const auto subject = m_medians.find(c.subject);
        const auto peer = isAlone ? subject : m_medians.find(c.peer);
        if (subject == m_medians.end() || peer == m_medians.end())
            continue; // filtered out on the command line
        const double value = valueOf(c, subject->second, peer->second);
        const bool kept = value <= c.limit;
        allKept = allKept && kept;
        const bool isRatio = c.kind == Comparison::Kind::TimeRatio;
        const std::string beside = isAlone ? "" : (isRatio ? " / " : " - ") + c.peer;
        std::printf("%s%s: %.2f%s (limit %.2f) %s\n", c.subject.c_str(), beside.c_str(), value,
                    isRatio ? "" : (' ' + c.counter).c_str(), c.limit, kept ? "ok" : "MISSED");
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
