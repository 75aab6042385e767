#pragma once

#include <csignal>
#include <filesystem>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

/// Returns the folder of the benchmarks and of the programs that they start.
inline std::filesystem::path programFolder() {
    return std::filesystem::canonical("/proc/self/exe").parent_path();
}

/// A started program; standard output is the write end of the given pipe if there is one.
class Program {
public:
    Program(const std::filesystem::path& path, int output, std::vector<std::string> arguments = {}) {
        posix_spawn_file_actions_t files;
        ::posix_spawn_file_actions_init(&files);
        if (output >= 0)
            ::posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO);
        arguments.insert(arguments.begin(), path.string());
        std::vector<char*> argv;
        argv.reserve(arguments.size() + 1);
        for (std::string& argument : arguments)
            argv.push_back(argument.data());
        argv.push_back(nullptr);
        const int result = ::posix_spawn(&m_pid, argv[0], &files, nullptr, argv.data(), environ);
        ::posix_spawn_file_actions_destroy(&files);
        if (result != 0)
            throw std::runtime_error("cannot start " + path.string());
    }

    /// Waits for the end. Returns the most memory that the program had, in MB.
    [[nodiscard]] double peakMemory() const {
        constexpr double kKilobytesInMegabyte = 1024;
        rusage usage{};
        int status = 0;
        if (::wait4(m_pid, &status, 0, &usage) != m_pid || status != 0)
            throw std::runtime_error("a measured program failed");
        return static_cast<double>(usage.ru_maxrss) / kKilobytesInMegabyte;
    }

    void kill() const {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
    }

    [[nodiscard]] pid_t id() const { return m_pid; }

private:
    pid_t m_pid = -1;
};
