#include "bench/RatioReporter.h"
#include "bench/picl/DBusQuestioner.h"
#include "bench/picl/PiclQuestioner.h"

#include "picl/FrameReader.h"
#include "property/PropertyKey.h"

#include <QCoreApplication>

#include <array>
#include <chrono>
#include <deque>
#include <map>
#include <poll.h>
#include <thread>

namespace {

constexpr int kQuestions = 4000;
constexpr int kRepetitions = 11;
constexpr std::size_t kWatchers = 10;
constexpr std::size_t kChanging = 100; // properties
constexpr std::size_t kChanges = 10'000;
constexpr int kChangeRepetitions = 5;

/// A property server, and an owner of properties that is connected to it.
class Server {
public:
    Server()
        : m_device(prepare(m_root)),
          m_server("picl", {"serve", "--quiet", "--root", m_root.path().string()}) {}

    [[nodiscard]] os::Descriptor connect() const {
        os::Descriptor socket = os::openDevice(m_device);
        require(socket.isOpen(), "the server takes no connection");
        return socket;
    }

    [[nodiscard]] OwnerProgram startOwner() const {
        return {"picl_owner", {m_root.path().string(), std::to_string(owned::kAll - owned::kOfTheAgent)}};
    }

private:
    static std::string prepare(const TemporaryRoot& root) {
        std::filesystem::create_directory(root.path() / "store");
        return root.path() / "dev/PRN0";
    }

    TemporaryRoot m_root;
    std::string m_device;
    OwnerProgram m_server;
};

/// Asks the owner through the server.
class ServerQuestioner {
public:
    ServerQuestioner() : asker(m_server.connect()) {
        while (asker.get(0)[0].status != status::kSuccessful)
            std::this_thread::yield(); // until the server has heard of the owner
    }

private:
    Server m_server;
    OwnerProgram m_owner = m_server.startOwner();

public:
    PiclAsker asker;
};

void getFrom(benchmark::State& state, PiclAsker& asker) {
    std::size_t number = 0;
    for (auto _ : state) {
        const PropertyGetResponses reports = asker.get(number);
        require(reports.size() == 1 && reports[0].value == std::to_string(owned::value(number)),
                "not the property that was asked for");
        number = (number + 1) % (owned::kAll - owned::kOfTheAgent);
    }
}

void getDirectly(benchmark::State& state) {
    static PiclQuestioner owner(owned::kAll);
    getFrom(state, owner.asker);
}

void getThroughServer(benchmark::State& state) {
    static ServerQuestioner questioner;
    getFrom(state, questioner.asker);
}

void getThroughBus(benchmark::State& state) {
    static const DBusQuestioner questioner(DBusQuestioner::Way::ThroughBus);
    for (auto _ : state)
        require(questioner.get(QStringLiteral("number17")).toUInt() == owned::value(0),
                "not the property that was asked for");
}

PropertyGetResponse reportOf(std::size_t number, std::size_t value) {
    const PropertyGetRequest key = questionFor(number);
    return {.group = key.group,
            .groupString = std::string(vocabulary::groups::kDebugZone.name),
            .guid = key.guid,
            .nameString = owned::name(number),
            .value = std::to_string(value),
            .status = std::string(status::kSuccessful),
            .component = key.component,
            .componentString = std::string(vocabulary::components::kUpgradeUI.name)};
}

/// A watcher of everything. Knows when it has heard the last values.
class Watcher {
public:
    explicit Watcher(os::Descriptor socket) : m_socket(std::move(socket)) {
        JSONPICL message;
        message.addSubscribeAll();
        const std::string frame = message.toFrame();
        require(::write(m_socket.value(), frame.data(), frame.size()) == static_cast<ssize_t>(frame.size()),
                "the server does not listen");
    }

    [[nodiscard]] int handle() const { return m_socket.value(); }

    void hear() {
        std::array<char, 65536> bytes{};
        const ssize_t count = ::read(handle(), bytes.data(), bytes.size());
        require(count > 0, "the server has let a watcher go");
        m_reader.take({bytes.data(), static_cast<std::size_t>(count)});
        JSONPICL message;
        while (m_reader.next(message) == FrameReader::Result::Message)
            message.forEachGetResponse([this](const PropertyGetResponse& report) {
                if (report.component == vocabulary::components::kUpgradeUI.guid)
                    m_values[report.guid] = report.value;
            });
    }

    /// Returns whether each property has @p value.
    [[nodiscard]] bool hasAll(const std::string& value) const {
        return m_values.size() == kChanging &&
               std::all_of(m_values.begin(), m_values.end(),
                           [&](const auto& known) { return known.second == value; });
    }

private:
    os::Descriptor m_socket;
    FrameReader m_reader;
    std::map<std::string, std::string> m_values;
};

void waitForAll(std::deque<Watcher>& watchers, const std::string& value) {
    std::vector<pollfd> polled;
    polled.reserve(watchers.size());
    for (const Watcher& watcher : watchers)
        polled.push_back({watcher.handle(), POLLIN, 0});
    while (!std::all_of(watchers.begin(), watchers.end(),
                        [&](const Watcher& one) { return one.hasAll(value); })) {
        require(::poll(polled.data(), polled.size(), 10'000) > 0, "a last value does not come");
        for (std::size_t i = 0; i < polled.size(); ++i) {
            if (polled[i].revents != 0)
                watchers[i].hear();
        }
    }
}

/// Writes each change as a message of its own, round after round over all properties.
void change(HandleStream& member, std::size_t first) {
    for (std::size_t i = 0; i < kChanges; ++i) {
        auto report = std::make_unique<PropertyGetResponses>();
        report->push_back(reportOf(i % kChanging, first + i / kChanging));
        JSONPICL message;
        message.addGetResponses(std::move(report));
        require(message.exportTo(member), "the server does not listen");
    }
}

// From the first change to the moment at which the last watcher has the last value of the last property.
void changesToWatchers(benchmark::State& state) {
    static const Server server;
    HandleStream member(server.connect());
    std::deque<Watcher> watchers;
    for (std::size_t i = 0; i < kWatchers; ++i)
        watchers.emplace_back(server.connect());
    std::size_t round = 0;
    double slowest = 0;
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        std::thread writer([&member, round] { change(member, round); });
        round += kChanges / kChanging;
        waitForAll(watchers, std::to_string(round - 1));
        writer.join();
        slowest = std::max(slowest,
                           std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    }
    state.counters["seconds"] = slowest;
}

#define QUESTIONS                                                                                            \
    Iterations(kQuestions)->Repetitions(kRepetitions)->UseRealTime()->Unit(benchmark::kMicrosecond)
BENCHMARK(getThroughServer)->QUESTIONS;
BENCHMARK(getDirectly)->QUESTIONS;
BENCHMARK(getThroughBus)->QUESTIONS;
BENCHMARK(changesToWatchers)
    ->UseRealTime()
    ->Iterations(1)
    ->Repetitions(kChangeRepetitions)
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    return runAndCompare(argc, argv,
                         {{"getThroughServer", "getDirectly", 2},
                          {"getThroughServer", "getThroughBus", 1},
                          {"changesToWatchers", "", 1, Comparison::Kind::Counter, "seconds"}});
}
