#pragma once

#include <cstdint>

/// The priority of every thread of this system, on the printer's scale of 0 (most urgent) to 255.
inline constexpr std::int32_t kThreadPriority = 251;

/// A routine that runs on a thread of its own, with a priority and a bounded way to end it.
///
/// The owner makes it (ThreadFactory::createThread()), starts it, tells the routine in its own way to end,
/// and drops it: the destructor stops it. One owner calls start(), setPriority() and stop(), never two at a
/// time.
class Thread {
public:
    using Routine = std::uint32_t (*)(void* argument);

    /// Stops the thread as stop() does. Blocks at most 500 ms.
    virtual ~Thread();

    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    /// Runs the routine with @p argument, at the priority from its first instruction on. Returns false if the
    /// host cannot create the thread: then the thread is not started. Returns true at once if it is started
    /// already. Requires: @p argument lives until the routine ends.
    [[nodiscard]] virtual bool start(void* argument) = 0;

    /// Asks the host for @p priority. Returns false, and keeps the old one, if it refuses or the thread does
    /// not run.
    [[nodiscard]] virtual bool setPriority(std::int32_t priority) = 0;

    /// Waits for the routine to end and, if it does not, lets it go: then it runs on by itself, and what it
    /// touches must outlive it. Does nothing if the thread is not started. Blocks at most 500 ms.
    virtual void stop() = 0;

    /// Does nothing; a place for derived classes.
    virtual void hook() {}

    /// Returns how many thread objects there are in the process. Thread: any.
    [[nodiscard]] static std::uint32_t liveCount();

protected:
    Thread(Routine routine, std::int32_t priority, std::uint8_t stackOption);

    const Routine m_routine;
    std::int32_t m_priority;
    const std::uint8_t m_stackOption; ///< The size of the stack in bytes; 0 means the host's own.
    bool m_started = false;
};
