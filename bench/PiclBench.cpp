#include "bench/RatioReporter.h"
#include "bench/picl/DBusQuestioner.h"
#include "bench/picl/PiclQuestioner.h"

#include <QCoreApplication>

#include <set>

namespace {

constexpr int kQuestions = 500;
constexpr int kRepetitions = 21;
constexpr int kPeriods = 3;
constexpr int kPeriodRepetitions = 5;
constexpr double kPeriodSeconds = 0.5;

PiclQuestioner& piclQuestioner() {
    static PiclQuestioner questioner(owned::kAll);
    return questioner;
}

void getByPicl(benchmark::State& state) {
    PiclAsker& asker = piclQuestioner().asker;
    std::size_t number = 0;
    for (auto _ : state) {
        const PropertyGetResponses reports = asker.get(number);
        require(reports.size() == 1 && reports[0].value == std::to_string(owned::value(number)),
                "not the property that was asked for");
        number = (number + 1) % (owned::kAll - owned::kOfTheAgent);
    }
}

void getAllByPicl(benchmark::State& state) {
    PiclAsker& asker = piclQuestioner().asker;
    for (auto _ : state) {
        JSONPICL question;
        question.addGetAll();
        asker.say(question);
        require(asker.hear().size() == owned::kAll, "not all properties");
    }
}

const DBusQuestioner& dbusQuestioner() {
    static const DBusQuestioner questioner(DBusQuestioner::Way::Direct);
    return questioner;
}

void getByDBus(benchmark::State& state) {
    const DBusQuestioner& owner = dbusQuestioner();
    for (auto _ : state)
        require(owner.get(QStringLiteral("number17")).toUInt() == owned::value(0),
                "not the property that was asked for");
}

void getAllByDBus(benchmark::State& state) {
    const DBusQuestioner& owner = dbusQuestioner();
    for (auto _ : state)
        require(static_cast<std::size_t>(owner.getAll().size()) == owned::kAll, "not all properties");
}

/// Returns whether each of the many properties is reported once, with @p value, and nothing else.
bool haveAllChanged(const PropertyGetResponses& reports, const std::string& value) {
    std::set<std::string_view> guids;
    for (const PropertyGetResponse& report : reports) {
        if (report.value == value)
            guids.insert(report.guid);
    }
    return reports.size() == owned::kMany && guids.size() == owned::kMany;
}

/// Has all properties of @p owner set to @p value and waits for the frame that tells it.
void changeMany(PiclQuestioner& owner, const std::string& value) {
    const PropertyGetRequest first = questionFor(owned::kFirst);
    JSONPICL message;
    message.addSetRequest(
        {.guid = first.guid, .group = first.group, .component = first.component, .value = value});
    owner.asker.say(message);
    require(haveAllChanged(owner.asker.hear(), value), "the changes do not come in one frame");
}

// A new owner each time: its period begins with the frame that was heard last.
void publishMany(benchmark::State& state) {
    PiclQuestioner owner(owned::kMany + owned::kOfTheAgent);
    std::uint32_t value = 0;
    double used = 0;
    for (auto _ : state) {
        const double before = owner.processorTime();
        changeMany(owner, std::to_string(++value));
        const double period = owner.processorTime() - before;
        state.SetIterationTime(period);
        used += period;
    }
    require(owner.asker.get(owned::kFirst).size() == 1, "more than one frame in a period");
    state.counters["percent"] = 100 * used / (kPeriods * kPeriodSeconds);
}

#define QUESTIONS                                                                                            \
    Iterations(kQuestions)->Repetitions(kRepetitions)->UseRealTime()->Unit(benchmark::kMicrosecond)
BENCHMARK(getByPicl)->QUESTIONS;
BENCHMARK(getByDBus)->QUESTIONS;
BENCHMARK(getAllByPicl)->QUESTIONS;
BENCHMARK(getAllByDBus)->QUESTIONS;
BENCHMARK(publishMany)
    ->UseManualTime()
    ->Iterations(kPeriods)
    ->Repetitions(kPeriodRepetitions)
    ->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    return runAndCompare(argc, argv,
                         {{"getByPicl", "getByDBus", 0.5},
                          {"getAllByPicl", "getAllByDBus", 0.5},
                          {"publishMany", "", 5, Comparison::Kind::Counter, "percent"}});
}
