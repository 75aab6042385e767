#include "bench/RatioReporter.h"
#include "bench/TemporaryRoot.h"

#include "app/UpgradeInterface.h"
#include "app/UpgradeMessage.h"
#include "tools/upgrader/UpgraderLink.h"

#include <atomic>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr int kWakeUps = 200;
constexpr int kRepetitions = 11;
constexpr auto kRest = 1ms; // for the other thread to be asleep again

/// The moment at which the other thread got what was sent, handed back to the sender.
class Arrival {
public:
    void arrived() {
        m_at = Clock::now();
        m_done.store(true, std::memory_order_release);
    }

    /// Lets the other thread fall asleep, calls @p signal and returns how long it took to arrive, in seconds.
    template <typename Signal>
    double timed(Signal signal) {
        m_done.store(false, std::memory_order_relaxed);
        std::this_thread::sleep_for(kRest);
        const Clock::time_point sent = Clock::now();
        signal();
        while (!m_done.load(std::memory_order_acquire))
            std::this_thread::yield();
        return std::chrono::duration<double>(m_at - sent).count();
    }

private:
    Clock::time_point m_at;
    std::atomic<bool> m_done = false;
};

void bareFifoWakeUp(benchmark::State& state) {
    const TemporaryRoot root;
    const std::string path = (root.path() / "fifo").string();
    if (::mkfifo(path.c_str(), 0600) != 0)
        throw std::runtime_error("no FIFO");
    const int fifo = ::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    Arrival arrival;
    std::atomic<bool> ended = false;
    std::thread reader([&] {
        char bytes[64];
        for (pollfd entry{fifo, POLLIN, 0}; ::poll(&entry, 1, -1) == 1 && !ended;) {
            if (::read(fifo, bytes, sizeof bytes) > 0)
                arrival.arrived();
        }
    });
    const auto signal = [fifo] { benchmark::DoNotOptimize(::write(fifo, "x", 1)); };
    for (auto _ : state)
        state.SetIterationTime(arrival.timed(signal));
    ended = true;
    signal();
    reader.join();
    ::close(fifo);
}

// From the moment that the code stands in the ring, as it does for a peer the moment that it has its byte.
void codeToDisplayHandler(benchmark::State& state) {
    const TemporaryRoot root;
    std::string why;
    const auto upgrader = UpgraderLink::create(why);
    const auto application = createUpgradeInterface();
    Arrival arrival;
    application->setDisplayHandler([&arrival](UpgradeDisplay) { arrival.arrived(); });
    application->start();
    for (auto _ : state) {
        if (!upgrader->awaitTaken(10s))
            throw std::runtime_error("the listener does not take its codes");
        if (!upgrader->write(MsgFailed))
            throw std::runtime_error("the record is damaged");
        state.SetIterationTime(arrival.timed([&] { upgrader->signalCodes(); }));
    }
}

BENCHMARK(bareFifoWakeUp)
    ->UseManualTime()
    ->Iterations(kWakeUps)
    ->Repetitions(kRepetitions)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(codeToDisplayHandler)
    ->UseManualTime()
    ->Iterations(kWakeUps)
    ->Repetitions(kRepetitions)
    ->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char* argv[]) {
    return runAndCompare(argc, argv, {{"codeToDisplayHandler", "bareFifoWakeUp", 1.5}});
}
