#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

/// A program that a test has started; killed at the end if it still runs.
class ChildProcess {
public:
    /// Starts @p arguments, the first being the program, with both its outputs in @p outputFile.
    ChildProcess(const std::vector<std::string>& arguments, const std::filesystem::path& outputFile);
    ~ChildProcess();

    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Returns the exit status, or nothing if the program has not ended by itself within the deadline.
    std::optional<int> exitStatus(std::chrono::milliseconds deadline);

    [[nodiscard]] bool isRunning();
    void kill();

    /// Sends the signal @p number. Requires: the program runs.
    void signal(int number) const;

    /// Returns how often the threads of the program have been given a processor so far; 0 if that cannot be
    /// told.
    [[nodiscard]] long contextSwitches() const;

    /// Returns the bytes of memory that the program uses; 0 if it has ended.
    [[nodiscard]] std::size_t residentBytes() const;

    /// Returns the most memory in bytes that the program has taken so far; 0 under a sanitizer, which keeps
    /// what was freed.
    [[nodiscard]] std::size_t peakMemory() const;

private:
    pid_t m_pid = -1;
    std::optional<int> m_status;
};
