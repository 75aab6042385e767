#pragma once

#include <cstdint>
#include <functional>
#include <memory>

/// A word of 32 signal bits on which threads wait.
///
/// Bits stay until a wait consumes them, so a set() before the wait is never lost, and several before it
/// count as one. With auto-reset a successful wait clears the bits that it names below, otherwise only
/// clear() takes bits away. All waiters wake at a set(); the first to find its condition true consumes the
/// bits. What was written before set() is visible after a wait on its bits. Time-outs are literal: no value
/// means forever. Requires: destroyed when no thread is inside an operation any more.
class Event {
public:
    /// Judges a word. Runs under the event's lock, so it must not wait. Requires: not empty.
    using Predicate = std::function<bool(std::uint32_t bits)>;

    virtual ~Event();

    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    /// Waits for any bit of @p mask. Returns the whole word as it stood before the bits of @p mask are
    /// cleared, or 0 at time-out. Thread: any. Blocks at most @p timeoutMs milliseconds.
    [[nodiscard]] virtual std::uint32_t waitAnyTimed(std::uint32_t mask, std::uint32_t timeoutMs) = 0;

    /// As waitAnyTimed(), without limit. Thread: any. Blocks.
    virtual std::uint32_t waitAny(std::uint32_t mask) = 0;

    /// Waits until @p predicate holds; the whole word is cleared. Returns whether it came to that. Thread:
    /// any. Blocks at most @p timeoutMs milliseconds.
    [[nodiscard]] virtual bool waitMatchTimed(Predicate predicate, std::uint32_t timeoutMs) = 0;

    /// As waitMatchTimed(), without limit. Returns the whole word as it stood before. Thread: any. Blocks.
    virtual std::uint32_t waitMatch(Predicate predicate) = 0;

    /// Waits for all bits of @p mask together; these are cleared. Returns whether they came. Thread: any.
    /// Blocks at most @p timeoutMs milliseconds.
    [[nodiscard]] virtual bool waitAllTimed(std::uint32_t mask, std::uint32_t timeoutMs) = 0;

    /// As waitAllTimed(), without limit. Returns true. Thread: any. Blocks.
    virtual bool waitAll(std::uint32_t mask) = 0;

    /// Adds the bits of @p mask to the word and wakes all waiters. Thread: any.
    virtual void set(std::uint32_t mask) = 0;

    /// Takes the bits of @p mask from the word and wakes nobody. Thread: any.
    virtual void clear(std::uint32_t mask) = 0;

    /// Returns how many events there are in the process. Thread: any.
    [[nodiscard]] static std::uint32_t liveCount();

protected:
    explicit Event(bool autoReset);

    // The first two are guarded by the lock of the derived class.
    std::uint32_t m_bits = 0;
    bool m_waiting = false; ///< A wait has taken the lock and has not ended.
    const bool m_autoReset;
};

/// Returns a new event, an AnyEvent over KeltoMutex. Thread: any.
[[nodiscard]] std::unique_ptr<Event> createEvent(bool autoReset);
