#include "platform/Worker.h"

#include "platform/ThreadFactory.h"

#include <utility>

Worker::Worker(ThreadFactory& threads, std::int32_t priority)
    : m_thread(threads.createThread(run, priority, 0)) {}

Worker::~Worker() = default;

bool Worker::start(std::function<void()> body) {
    auto owned = std::make_unique<std::function<void()>>(std::move(body));
    if (!m_thread->start(owned.get()))
        return false;
    static_cast<void>(owned.release()); // the thread owns it now
    return true;
}

void Worker::stop() { m_thread->stop(); }

std::uint32_t Worker::run(void* body) {
    const std::unique_ptr<std::function<void()>> owned(static_cast<std::function<void()>*>(body));
    (*owned)();
    return 0;
}
