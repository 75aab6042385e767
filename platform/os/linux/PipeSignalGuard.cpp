#include "platform/os/linux/PipeSignalGuard.h"

#include <cerrno>

namespace os {
namespace {

sigset_t pipeSignal() {
    sigset_t set;
    ::sigemptyset(&set);
    ::sigaddset(&set, SIGPIPE);
    return set;
}

bool isPending() {
    sigset_t pending;
    ::sigemptyset(&pending);
    ::sigpending(&pending);
    return ::sigismember(&pending, SIGPIPE) == 1;
}

} // namespace

PipeSignalGuard::PipeSignalGuard() : m_wasPending(isPending()) {
    const sigset_t set = pipeSignal();
    ::pthread_sigmask(SIG_BLOCK, &set, &m_before);
}

PipeSignalGuard::~PipeSignalGuard() {
    const int failure = errno; // of the write, which the caller still asks for
    if (!m_wasPending && isPending()) {
        const sigset_t set = pipeSignal();
        const timespec atOnce{};
        ::sigtimedwait(&set, nullptr, &atOnce);
    }
    ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    errno = failure;
}

} // namespace os
