#include "platform/ThreadFactory.h"

#include "platform/WindowsThread.h"

#include <utility>

ThreadFactory::ThreadFactory(std::int32_t reaperPriority)
    : m_wake(std::make_unique<SimpleEvent>(true)), m_finished(std::make_unique<SimpleEvent>(true)) {
    m_reaper = createThread(reap, reaperPriority, 0);
    if (!m_reaper->start(this))
        m_finished->signal(); // or the destructor would wait for ever
}

ThreadFactory::~ThreadFactory() {
    m_running = false;
    m_wake->signal();
    m_finished->wait();
    m_reaper.reset(); // before what it has just used
    m_finished.reset();
    m_wake.reset();
    deleteDeadThreads(); // where the end came before the reaper's first look
}

std::unique_ptr<Thread> ThreadFactory::createThread(Thread::Routine routine, std::int32_t priority,
                                                    std::uint8_t stackOption) {
    return std::make_unique<WindowsThread>(routine, priority, stackOption);
}

void ThreadFactory::bury(std::unique_ptr<Thread> thread) {
    {
        const KeltoGuard guard(m_lock);
        m_deadThreads.push_back(std::move(thread));
    }
    m_wake->signal();
}

std::uint32_t ThreadFactory::reap(void* factory) {
    auto& self = *static_cast<ThreadFactory*>(factory);
    while (self.m_running) {
        self.m_wake->wait();
        self.deleteDeadThreads();
    }
    self.m_finished->signal();
    return 0;
}

void ThreadFactory::deleteDeadThreads() {
    const KeltoGuard guard(m_lock);
    while (!m_deadThreads.empty()) {
        const std::unique_ptr<Thread> oldest = std::move(m_deadThreads.front());
        m_deadThreads.pop_front();
    }
}
