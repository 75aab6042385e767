#include "bench/Program.h"
#include "bench/RatioReporter.h"
#include "bench/TemporaryRoot.h"

#include "app/UpgradeMessage.h"
#include "tools/firmware/FirmwareDriver.h"
#include "tools/upgrader/UpgraderLink.h"

#include <fcntl.h>
#include <stdexcept>
#include <thread>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr int kStarts = 5;
constexpr int kRepetitions = 7;

void minimalQtQuick(benchmark::State& state) {
    int ready[2];
    if (::pipe2(ready, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    double memory = 0;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        const Program program(programFolder() / "minimal_quick", ready[1]);
        char byte = 0;
        if (::read(ready[0], &byte, 1) != 1)
            throw std::runtime_error("the minimal program does not get ready");
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        memory = std::max(memory, program.peakMemory());
    }
    state.counters["MB"] = memory;
    ::close(ready[0]);
    ::close(ready[1]);
}

/// The application beside a device root of its own: one for all runs, as an installed program has one place.
class Application {
public:
    static const Application& installed() {
        static const Application application;
        return application;
    }

    Application() {
        std::filesystem::copy_file(programFolder() / "UpgradeUI", m_root.path() / "UpgradeUI");
        std::filesystem::create_directory(m_root.path() / "printer");
        for (const char* const folder : {"translations", "printer/hard disk", "printer/boot"})
            std::filesystem::create_symlink(programFolder() / folder, m_root.path() / folder);
        os::setDeviceRoot((m_root.path() / "printer").string());
    }

    Program start() const { return {m_root.path() / "UpgradeUI", -1}; }

    /// Returns an upgrader that found no application.
    static std::unique_ptr<UpgraderLink> upgrader() {
        std::string why;
        auto link = UpgraderLink::create(why);
        if (!link)
            throw std::runtime_error(why);
        return link;
    }

private:
    TemporaryRoot m_root;
};

void awaitExiting(UpgraderLink& upgrader) {
    while (const auto reply = upgrader.awaitReply(30s)) {
        if (reply->kind == UpgraderReply::Kind::Command && reply->command == CommandUiExiting)
            return;
    }
    throw std::runtime_error("the application does not answer");
}

std::unique_ptr<FirmwareDriver> makeServer() {
    std::string why;
    auto server = FirmwareDriver::create(true, why);
    if (!server)
        throw std::runtime_error(why);
    return server;
}

// An exit that waits in the ring is answered as soon as the listener has taken it and the root file is
// loaded.
void upgradeUiStart(benchmark::State& state, bool hasServer) {
    const Application& application = Application::installed();
    const auto server = hasServer ? makeServer() : nullptr;
    double memory = 0;
    for (auto _ : state) {
        const auto upgrader = Application::upgrader();
        benchmark::DoNotOptimize(upgrader->send(MsgExitUi, 1s));
        const Clock::time_point start = Clock::now();
        const Program program = application.start();
        awaitExiting(*upgrader);
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        memory = std::max(memory, program.peakMemory());
    }
    state.counters["MB"] = memory;
}

// With a screen that has been drawn.
void upgradeUiShown(benchmark::State& state) {
    const Application& application = Application::installed();
    double memory = 0;
    for (auto _ : state) {
        const auto upgrader = Application::upgrader();
        const Clock::time_point start = Clock::now();
        const Program program = application.start();
        for (const std::uint8_t code : {MsgFileFound, ProgressInitiated, ProgressExtractPkgTemp, MsgFailed}) {
            if (!upgrader->send(code, 10s) || !upgrader->awaitTaken(10s))
                throw std::runtime_error("the application does not take its codes");
            std::this_thread::sleep_for(200ms); // for the screen to be drawn
        }
        benchmark::DoNotOptimize(upgrader->send(MsgExitUi, 1s));
        awaitExiting(*upgrader);
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        memory = std::max(memory, program.peakMemory());
    }
    state.counters["MB"] = memory;
}

BENCHMARK(minimalQtQuick)
    ->UseManualTime()
    ->Iterations(kStarts)
    ->Repetitions(kRepetitions)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(upgradeUiStart, alone, false)
    ->UseManualTime()
    ->Iterations(kStarts)
    ->Repetitions(kRepetitions)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(upgradeUiStart, withServer, true)
    ->UseManualTime()
    ->Iterations(kStarts)
    ->Repetitions(kRepetitions)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(upgradeUiShown)
    ->UseManualTime()
    ->Iterations(1)
    ->Repetitions(kRepetitions)
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char* argv[]) {
    const TemporaryRoot runtimeFolder;
    // NOLINTBEGIN(concurrency-mt-unsafe): there is no other thread yet
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::setenv("XDG_RUNTIME_DIR", runtimeFolder.path().c_str(), 1);
    ::setenv("XDG_CACHE_HOME", runtimeFolder.path().c_str(), 1);
    // NOLINTEND(concurrency-mt-unsafe)
    using Kind = Comparison::Kind;
    return runAndCompare(argc, argv,
                         {{"upgradeUiStart/alone", "minimalQtQuick", 1.6},
                          {"upgradeUiStart/withServer", "minimalQtQuick", 1.6},
                          {"upgradeUiStart/withServer", "minimalQtQuick", 8, Kind::CounterDifference, "MB"},
                          {"upgradeUiShown", "minimalQtQuick", 8, Kind::CounterDifference, "MB"}});
}
