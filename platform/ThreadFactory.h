#pragma once

#include "platform/KeltoMutex.h"
#include "platform/SimpleEvent.h"
#include "platform/Thread.h"

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>

/// Makes all threads of the program, and has one of its own, the reaper, that deletes threads which nobody
/// wants to wait for.
class ThreadFactory {
public:
    /// Starts the reaper at @p reaperPriority. If the host cannot create it, the destructor does its work.
    explicit ThreadFactory(std::int32_t reaperPriority);

    /// Ends the reaper, which deletes what it was given before. Blocks at most 500 ms for each thread there.
    ~ThreadFactory();

    ThreadFactory(const ThreadFactory&) = delete;
    ThreadFactory& operator=(const ThreadFactory&) = delete;

    /// Returns a new thread, not started, which the factory does not remember. Its stack has the host's own
    /// size if @p stackOption is 0. Thread: any.
    [[nodiscard]] std::unique_ptr<Thread> createThread(Thread::Routine routine, std::int32_t priority,
                                                       std::uint8_t stackOption);

    /// Has @p thread deleted by the reaper. Thread: any.
    void bury(std::unique_ptr<Thread> thread);

private:
    static std::uint32_t reap(void* factory);
    void deleteDeadThreads();

    std::atomic<bool> m_running = true; // the reaper may look before the first signal orders anything
    std::unique_ptr<Thread> m_reaper;
    KeltoMutex m_lock;
    std::deque<std::unique_ptr<Thread>> m_deadThreads KELTO_GUARDED_BY(m_lock); // the oldest first
    std::unique_ptr<SimpleEvent> m_wake;     // the reaper is to look at m_deadThreads and m_running
    std::unique_ptr<SimpleEvent> m_finished; // the last act of the reaper
};
