#include "platform/os/NativeThread.h"

#include <array>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>

namespace os {
namespace {

constexpr std::int32_t kHighestNumber = 255;
constexpr std::int32_t kFirstNiceNumber = 248; // below it is the real-time class
constexpr std::array<int, 8> kNiceValues{-15, -10, -5, 0, 5, 10, 15, 19};

struct HostPriority {
    int policy = SCHED_OTHER;
    int realTime = 0;
    int nice = 0;
};

// Spreads the numbers 247 to 0 over the whole range of the real-time class.
int realTimePriority(std::int32_t priority) {
    const int lowest = ::sched_get_priority_min(SCHED_RR);
    const int highest = ::sched_get_priority_max(SCHED_RR);
    constexpr std::int32_t kLeastUrgent = kFirstNiceNumber - 1;
    return lowest + (kLeastUrgent - priority) * (highest - lowest) / kLeastUrgent;
}

std::optional<HostPriority> hostPriority(std::int32_t priority) {
    if (priority < 0 || priority > kHighestNumber)
        return {};
    if (priority < kFirstNiceNumber)
        return HostPriority{SCHED_RR, realTimePriority(priority), 0};
    return HostPriority{SCHED_OTHER, 0, kNiceValues[static_cast<std::size_t>(priority - kFirstNiceNumber)]};
}

// On Linux a nice value belongs to one thread.
bool apply(pid_t thread, const HostPriority& priority) {
    sched_param parameter{};
    parameter.sched_priority = priority.realTime;
    if (::sched_setscheduler(thread, priority.policy, &parameter) != 0)
        return false;
    return priority.policy != SCHED_OTHER ||
           ::setpriority(PRIO_PROCESS, static_cast<id_t>(thread), priority.nice) == 0;
}

} // namespace

struct NativeThread::State {
    enum class Order { Wait, Run, End };

    const Routine routine;
    void* const argument;
    pthread_t handle{}; // the owner's

    std::mutex lock;
    std::condition_variable changed;
    pid_t id = 0;              // 0 before the thread is there; guarded by lock
    Order order = Order::Wait; // guarded by lock
    bool ended = false;        // guarded by lock
    bool joined = false;       // the owner's

    State(Routine theRoutine, void* theArgument) : routine(theRoutine), argument(theArgument) {}

    void give(Order newOrder) {
        const std::scoped_lock guard(lock);
        if (order == Order::Wait)
            order = newOrder;
        changed.notify_all();
    }

    // Nothing may leave a thread but by its end.
    void run() noexcept {
        std::unique_lock guard(lock);
        id = ::gettid();
        changed.notify_all();
        changed.wait(guard, [this] { return order != Order::Wait; });
        const bool runs = order == Order::Run;
        guard.unlock();
        if (runs)
            routine(argument);
        guard.lock();
        ended = true;
        changed.notify_all();
    }

    static void* entry(void* state) {
        const std::unique_ptr<std::shared_ptr<State>> own(static_cast<std::shared_ptr<State>*>(state));
        (*own)->run();
        return nullptr;
    }

    bool create(const std::shared_ptr<State>& self, std::size_t stackSize) {
        pthread_attr_t attributes;
        ::pthread_attr_init(&attributes);
        if (stackSize != 0)
            ::pthread_attr_setstacksize(&attributes, stackSize);
        auto own = std::make_unique<std::shared_ptr<State>>(self);
        const bool created = ::pthread_create(&handle, &attributes, entry, own.get()) == 0;
        if (created)
            static_cast<void>(own.release()); // the thread's now
        ::pthread_attr_destroy(&attributes);
        return created;
    }
};

NativeThread::NativeThread() = default;

NativeThread::NativeThread(Routine routine, void* argument, std::size_t stackSize)
    : m_state(std::make_shared<State>(routine, argument)) {
    if (!m_state->create(m_state, stackSize)) {
        m_state.reset();
        return;
    }
    std::unique_lock guard(m_state->lock);
    m_state->changed.wait(guard, [this] { return m_state->id != 0; });
}

NativeThread::~NativeThread() {
    if (!m_state || m_state->joined)
        return;
    m_state->give(State::Order::End);
    ::pthread_detach(m_state->handle);
}

NativeThread::NativeThread(NativeThread&& other) noexcept = default;

NativeThread& NativeThread::operator=(NativeThread&& other) noexcept {
    std::swap(m_state, other.m_state);
    return *this;
}

void NativeThread::resume() {
    const std::shared_ptr<State> state = m_state; // the routine may end this object
    if (state)
        state->give(State::Order::Run);
}

bool NativeThread::setPriority(std::int32_t priority) {
    const std::optional<HostPriority> wanted = hostPriority(priority);
    if (!m_state || !wanted)
        return false;
    // Held meanwhile: after its end the thread's number can be another's.
    const std::scoped_lock guard(m_state->lock);
    return !m_state->ended && apply(m_state->id, *wanted);
}

bool NativeThread::waitForEnd(std::chrono::milliseconds limit) {
    if (!m_state || m_state->joined)
        return true;
    if (::pthread_equal(m_state->handle, ::pthread_self()) != 0)
        return false;
    {
        std::unique_lock guard(m_state->lock);
        if (!m_state->changed.wait_for(guard, limit, [this] { return m_state->ended; }))
            return false;
    }
    // Only a few instructions are left of the thread.
    ::pthread_join(m_state->handle, nullptr);
    m_state->joined = true;
    return true;
}

} // namespace os
