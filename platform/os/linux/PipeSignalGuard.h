#pragma once

#include <csignal>

/// Linux only.
namespace os {

/// Keeps SIGPIPE from this thread for as long as it lives, and takes away the one that a write in between
/// raised. One that was pending before stays so; other threads and the process's handler are not touched.
class PipeSignalGuard {
public:
    PipeSignalGuard();
    ~PipeSignalGuard();

    PipeSignalGuard(const PipeSignalGuard&) = delete;
    PipeSignalGuard& operator=(const PipeSignalGuard&) = delete;

private:
    sigset_t m_before{};
    bool m_wasPending = false;
};

} // namespace os
