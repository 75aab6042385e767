#include "platform/ThreadFactory.h"

#include "platform/WindowsThread.h"

#include <utility>

ThreadFactory::ThreadFactory(std::int32_t reaperPriority) : m_reaper(createThread(reap, reaperPriority, 0)) {
    auto owned = std::make_unique<std::shared_ptr<Reaping>>(m_reaping);
    if (m_reaper->start(owned.get()))
        static_cast<void>(owned.release()); // the thread owns it now
    else
        m_reaping->finished.signal(); // or the destructor would wait for ever
}

ThreadFactory::~ThreadFactory() {
    m_reaping->running = false;
    m_reaping->wake.signal();
    m_reaping->finished.wait();
    m_reaping->deleteDeadThreads(); // where the end came before the reaper's first look
}

std::unique_ptr<Thread> ThreadFactory::createThread(Thread::Routine routine, std::int32_t priority,
                                                    std::uint8_t stackOption) {
    return std::make_unique<WindowsThread>(routine, priority, stackOption);
}

void ThreadFactory::bury(std::unique_ptr<Thread> thread) {
    {
        const KeltoGuard guard(m_reaping->lock);
        m_reaping->deadThreads.push_back(std::move(thread));
    }
    m_reaping->wake.signal();
}

std::uint32_t ThreadFactory::reap(void* reaping) {
    const std::unique_ptr<std::shared_ptr<Reaping>> owned(static_cast<std::shared_ptr<Reaping>*>(reaping));
    Reaping& mine = **owned;
    while (mine.running) {
        mine.wake.wait();
        mine.deleteDeadThreads();
    }
    mine.finished.signal();
    return 0;
}

void ThreadFactory::Reaping::deleteDeadThreads() {
    const KeltoGuard guard(lock);
    while (!deadThreads.empty()) {
        const std::unique_ptr<Thread> oldest = std::move(deadThreads.front());
        deadThreads.pop_front();
    }
}
