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
    /// The state that the reaper shares, so that it can return after the factory was destroyed.
    struct Reaping {
        std::atomic<bool> running = true; // the reaper may look before the first signal orders anything
        KeltoMutex lock;
        std::deque<std::unique_ptr<Thread>> deadThreads KELTO_GUARDED_BY(lock); // the oldest first
        SimpleEvent wake{true};     // the reaper is to look at deadThreads and running
        SimpleEvent finished{true}; // the last act of the reaper

        void deleteDeadThreads();
    };

    static std::uint32_t reap(void* reaping);

    const std::shared_ptr<Reaping> m_reaping = std::make_shared<Reaping>();
    std::unique_ptr<Thread> m_reaper;
};
