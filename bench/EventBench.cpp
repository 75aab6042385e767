#include "RatioReporter.h"

#include "platform/Event.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace {

constexpr int kRounds = 1000; // there and back
constexpr int kRepetitions = 75;

/// The least that hands something over: a lock, a flag and a condition variable.
class BareSignal {
public:
    void set() {
        {
            const std::scoped_lock guard(m_mutex);
            m_isSet = true;
        }
        m_condition.notify_all();
    }
    void wait() {
        std::unique_lock guard(m_mutex);
        m_condition.wait(guard, [this] { return m_isSet; });
        m_isSet = false;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_condition;
    bool m_isSet = false;
};

class EventSignal {
public:
    void set() { m_event->set(1); }
    void wait() { m_event->waitAny(1); }

private:
    std::unique_ptr<Event> m_event = createEvent(true);
};

template <typename Signal>
void handOver(benchmark::State& state) {
    Signal there;
    Signal back;
    for (auto _ : state) {
        std::thread other([&] {
            for (int i = 0; i < kRounds; ++i) {
                there.wait();
                back.set();
            }
        });
        for (int i = 0; i < kRounds; ++i) {
            there.set();
            back.wait();
        }
        other.join();
    }
    state.SetItemsProcessed(state.iterations() * kRounds);
}

void bareConditionVariable(benchmark::State& state) { handOver<BareSignal>(state); }
void eventHandOver(benchmark::State& state) { handOver<EventSignal>(state); }

BENCHMARK(bareConditionVariable)
    ->UseRealTime()
    ->Iterations(1)
    ->Repetitions(kRepetitions)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(eventHandOver)
    ->UseRealTime()
    ->Iterations(1)
    ->Repetitions(kRepetitions)
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char* argv[]) {
    return runAndCompare(argc, argv, {{"eventHandOver", "bareConditionVariable", 1.3}});
}
