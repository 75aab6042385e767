#include "platform/WindowsThread.h"

namespace {

constexpr std::chrono::milliseconds kStopLimit{500};

} // namespace

WindowsThread::WindowsThread(Routine routine, std::int32_t priority, std::uint8_t stackOption)
    : Thread(routine, priority, stackOption) {}

WindowsThread::~WindowsThread() { WindowsThread::stop(); }

bool WindowsThread::start(void* argument) {
    if (m_started)
        return true;
    m_handle = os::NativeThread(m_routine, argument, m_stackOption);
    if (!m_handle.isPresent())
        return false;
    static_cast<void>(setPriority(m_priority)); // a routine at another priority is better than none
    m_started = true;
    m_handle.resume(); // the last: the routine may drop this object
    return true;
}

bool WindowsThread::setPriority(std::int32_t priority) {
    if (!m_handle.setPriority(priority))
        return false;
    m_priority = priority;
    return true;
}

void WindowsThread::stop() {
    if (!m_started)
        return;
    static_cast<void>(m_handle.waitForEnd(kStopLimit)); // what has not ended by then is let go
    m_started = false;
}
