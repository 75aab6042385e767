#include "platform/Thread.h"

#include <atomic>

namespace {

std::atomic<std::uint32_t> liveThreads = 0;

} // namespace

Thread::Thread(Routine routine, std::int32_t priority, std::uint8_t stackOption)
    : m_routine(routine), m_priority(priority), m_stackOption(stackOption) {
    ++liveThreads;
}

Thread::~Thread() { --liveThreads; }

std::uint32_t Thread::liveCount() { return liveThreads; }
