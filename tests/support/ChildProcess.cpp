#include "tests/support/ChildProcess.h"

#include "tests/support/DeviceRootTest.h"

#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

ChildProcess::ChildProcess(const std::vector<std::string>& arguments,
                           const std::filesystem::path& outputFile) {
    std::vector<char*> argv;
    argv.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);

    posix_spawn_file_actions_t files;
    ::posix_spawn_file_actions_init(&files);
    ::posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, outputFile.c_str(),
                                       O_CREAT | O_WRONLY | O_TRUNC, 0600);
    ::posix_spawn_file_actions_adddup2(&files, STDOUT_FILENO, STDERR_FILENO);
    if (::posix_spawn(&m_pid, argv[0], &files, nullptr, argv.data(), environ) != 0)
        ADD_FAILURE() << "cannot start " << arguments.front();
    ::posix_spawn_file_actions_destroy(&files);
}

ChildProcess::~ChildProcess() {
    if (isRunning())
        kill();
}

bool ChildProcess::isRunning() {
    int status = 0;
    if (m_pid > 0 && !m_status && ::waitpid(m_pid, &status, WNOHANG) == m_pid)
        m_status = status;
    return m_pid > 0 && !m_status;
}

void ChildProcess::kill() {
    int status = 0;
    ::kill(m_pid, SIGKILL);
    ::waitpid(m_pid, &status, 0);
    m_status = status;
}

void ChildProcess::signal(int number) const { ::kill(m_pid, number); }

std::optional<int> ChildProcess::exitStatus(std::chrono::milliseconds deadline) {
    if (!eventually([this] { return !isRunning(); }, deadline) || !m_status || !WIFEXITED(*m_status))
        return {};
    return WEXITSTATUS(*m_status);
}

std::size_t ChildProcess::peakMemory() const {
    std::size_t kibibytes = 0;
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    std::ifstream status("/proc/" + std::to_string(m_pid) + "/status");
    for (std::string word; status >> word && word != "VmHWM:";) {
    }
    status >> kibibytes;
#endif
    return kibibytes << 10U;
}

long ChildProcess::contextSwitches() const {
    long sum = 0;
    std::error_code ended;
    const std::filesystem::path tasks = "/proc/" + std::to_string(m_pid) + "/task";
    for (const auto& task : std::filesystem::directory_iterator(tasks, ended)) {
        std::ifstream status(task.path() / "status");
        for (std::string word; status >> word;) {
            long count = 0;
            if (word.ends_with("voluntary_ctxt_switches:") && status >> count)
                sum += count;
        }
    }
    return sum;
}

std::size_t ChildProcess::residentBytes() const {
    std::size_t pages = 0;
    std::ifstream("/proc/" + std::to_string(m_pid) + "/statm") >> pages >> pages;
    return pages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}
