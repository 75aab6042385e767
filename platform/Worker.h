#pragma once

#include <cstdint>
#include <functional>
#include <memory>

class Thread;
class ThreadFactory;

/// A thread that owns the function that it runs: what the function captures lives until it returns, also if
/// the thread is detached meanwhile.
class Worker {
public:
    Worker(ThreadFactory& threads, std::int32_t priority);

    /// As stop().
    ~Worker();

    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// Runs @p body on the thread. Returns false, and destroys @p body, if the host cannot create the thread.
    /// Requires: not running.
    [[nodiscard]] bool start(std::function<void()> body);

    /// Waits up to 500 ms for the end of the function and then detaches the thread. Requires: the function
    /// was requested to end.
    void stop();

private:
    static std::uint32_t run(void* body);

    const std::unique_ptr<Thread> m_thread;
};
