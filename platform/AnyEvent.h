#pragma once

#include "platform/Event.h"
#include "platform/KeltoMutex.h"
#include "platform/ThreadSafety.h"

#include <boost/chrono/system_clocks.hpp>
#include <boost/thread/cv_status.hpp>

#include <thread>
#include <utility>

/// An Event over a lock and a condition variable that waits with this lock and has timed waits on
/// boost::chrono::steady_clock. Used with KeltoMutex and boost::condition_variable_any.
template <typename Mutex, typename Condition>
class AnyEvent : public Event {
public:
    explicit AnyEvent(bool autoReset) : Event(autoReset) {}

    std::uint32_t waitAnyTimed(std::uint32_t mask, std::uint32_t timeoutMs) override {
        const Guard guard(m_mutex);
        return awaitUntil(deadlineIn(timeoutMs), anyOf(mask)) ? take(mask) : 0;
    }

    std::uint32_t waitAny(std::uint32_t mask) override {
        const Guard guard(m_mutex);
        await(anyOf(mask));
        return take(mask);
    }

    // The predicate is the caller's temporary: it goes after the guard.
    bool waitMatchTimed(Predicate predicate, std::uint32_t timeoutMs) override {
        const Guard guard(m_mutex);
        const bool held = awaitUntil(deadlineIn(timeoutMs), predicate);
        if (held)
            take(kAllBits);
        return held;
    }

    std::uint32_t waitMatch(Predicate predicate) override {
        const Guard guard(m_mutex);
        await(predicate);
        return take(kAllBits);
    }

    bool waitAllTimed(std::uint32_t mask, std::uint32_t timeoutMs) override {
        const Guard guard(m_mutex);
        const bool held = awaitUntil(deadlineIn(timeoutMs), allOf(mask));
        if (held)
            take(mask);
        return held;
    }

    bool waitAll(std::uint32_t mask) override {
        const Guard guard(m_mutex);
        await(allOf(mask));
        take(mask);
        return true;
    }

    void set(std::uint32_t mask) override {
        {
            const Guard guard(m_mutex);
            m_bits |= mask;
        }
        m_condition.notify_all(); // after the release: who wakes finds the lock free
    }

    void clear(std::uint32_t mask) override {
        const Guard guard(m_mutex);
        m_bits &= ~mask;
    }

private:
    using Guard = ScopedGuard<Mutex>;
    using Clock = boost::chrono::steady_clock;

    static constexpr std::uint32_t kAllBits = ~std::uint32_t{0};

    static auto anyOf(std::uint32_t mask) {
        return [mask](std::uint32_t bits) { return (bits & mask) != 0; };
    }
    static auto allOf(std::uint32_t mask) {
        return [mask](std::uint32_t bits) { return (bits & mask) == mask; };
    }

    static Clock::time_point deadlineIn(std::uint32_t timeoutMs) {
        constexpr std::int64_t kNanosecondsInMillisecond = 1'000'000;
        return Clock::now() + boost::chrono::nanoseconds(timeoutMs * kNanosecondsInMillisecond);
    }

    /// Marks a wait in progress until the end of its block, also if the predicate throws.
    struct WaitMark {
        explicit WaitMark(bool& waiting) : mark(waiting) { mark = true; }
        ~WaitMark() { mark = false; }
        WaitMark(const WaitMark&) = delete;
        WaitMark& operator=(const WaitMark&) = delete;

        bool& mark;
    };

    template <typename Holds>
    void await(const Holds& holds) KELTO_REQUIRES(m_mutex) {
        const WaitMark mark(m_waiting);
        // A thread that has just set another thread's bits mostly has its answer after one yield, at a third
        // of the cost of a sleep and a wake-up.
        if (!holds(m_bits)) {
            m_mutex.unlock();
            std::this_thread::yield();
            m_mutex.lock();
        }
        while (!holds(m_bits))
            m_condition.wait(m_mutex);
    }

    template <typename Holds>
    bool awaitUntil(Clock::time_point deadline, const Holds& holds) KELTO_REQUIRES(m_mutex) {
        const WaitMark mark(m_waiting);
        bool held = holds(m_bits);
        for (bool timedOut = false; !held && !timedOut; held = holds(m_bits))
            timedOut = m_condition.wait_until(m_mutex, deadline) == boost::cv_status::timeout;
        return held;
    }

    // Returns the word and then clears what the wait that succeeded clears.
    std::uint32_t take(std::uint32_t mask) KELTO_REQUIRES(m_mutex) {
        return m_autoReset ? std::exchange(m_bits, m_bits & ~mask) : m_bits;
    }

    Mutex m_mutex; // guards m_bits and m_waiting
    Condition m_condition;
};
