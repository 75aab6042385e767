#pragma once

#include "tests/support/DeviceRootTest.h"

#include <atomic>
#include <fstream>
#include <thread>
#include <unistd.h>

/// A thread of a test of which the test can tell that it has fallen asleep in a call.
class ProbedThread {
public:
    template <typename Body>
    explicit ProbedThread(Body body)
        : m_thread([this, body] {
              m_id = ::gettid();
              body();
          }) {}
    ~ProbedThread() { m_thread.join(); }

    ProbedThread(const ProbedThread&) = delete;
    ProbedThread& operator=(const ProbedThread&) = delete;

    /// Returns whether the thread sleeps by the deadline.
    [[nodiscard]] bool fallsAsleep() const {
        return eventually([this] { return m_id != 0 && state() == 'S'; });
    }

private:
    [[nodiscard]] char state() const {
        std::ifstream file("/proc/self/task/" + std::to_string(m_id) + "/stat");
        std::string line;
        std::getline(file, line);
        const std::size_t afterName = line.rfind(") ");
        return afterName == std::string::npos ? '?' : line[afterName + 2];
    }

    std::atomic<pid_t> m_id = 0;
    std::thread m_thread;
};
