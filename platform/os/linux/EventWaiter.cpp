#include "platform/os/EventWaiter.h"

#include "platform/os/NamedEvent.h"
#include "platform/os/linux/Deadline.h"
#include "platform/os/linux/SystemCall.h"

#include <algorithm>
#include <array>
#include <span>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace os {
namespace {

constexpr std::size_t kWakeUp = EventWaiter::kMostEvents; // its index, after those of the events

enum class Reset { Done, NothingThere, Failed };

// Empties the pipe, which is how an event resets itself. Another process that waits on the event may have
// been faster.
Reset resetEvent(int pipe) {
    std::array<char, 256> signals; // not cleared: this is on the way of every message
    bool any = false;
    for (;;) {
        const ssize_t count = retried([&] { return ::read(pipe, signals.data(), signals.size()); });
        if (count < 0 && errno != EAGAIN)
            return Reset::Failed;
        any = any || count > 0;
        if (count < static_cast<ssize_t>(signals.size()))
            return any ? Reset::Done : Reset::NothingThere;
    }
}

// Returns the first event of those that are ready; nothing if the waits are over.
std::optional<std::size_t> lowestIndex(std::span<const epoll_event> ready) {
    std::size_t lowest = kWakeUp;
    for (const epoll_event& entry : ready) {
        if (entry.data.u64 == kWakeUp || (entry.events & EPOLLIN) == 0)
            return {};
        lowest = std::min<std::size_t>(lowest, entry.data.u64);
    }
    return lowest;
}

} // namespace

EventWaiter::EventWaiter()
    : m_ready(::epoll_create1(EPOLL_CLOEXEC)), m_wakeUp(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    m_refused = !add(m_wakeUp.value(), kWakeUp);
}

bool EventWaiter::add(int descriptor, std::size_t index) {
    epoll_event entry{};
    entry.events = EPOLLIN;
    entry.data.u64 = index;
    return ::epoll_ctl(m_ready.value(), EPOLL_CTL_ADD, descriptor, &entry) == 0;
}

void EventWaiter::watch(const NamedEvent& event, std::size_t index) {
    if (!event.isPresent() || event.m_right != EventRight::Wait)
        return;
    m_pipes[index] = event.m_pipe.value();
    m_refused = !add(m_pipes[index], index) || m_refused;
}

EventWaiter::Result EventWaiter::wait(std::optional<std::chrono::milliseconds> timeout) {
    const Deadline deadline = timeout ? Deadline::clock::now() + *timeout : kNever;
    while (!m_refused) {
        std::array<epoll_event, kMostEvents + 1> ready;
        const int count = ::epoll_wait(m_ready.value(), ready.data(), ready.size(), remainingMs(deadline));
        if (count == 0)
            return {Outcome::TimedOut};
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            break;
        const auto index = lowestIndex({ready.data(), static_cast<std::size_t>(count)});
        if (!index)
            break;
        const Reset reset = resetEvent(m_pipes[*index]);
        if (reset == Reset::Done)
            return {Outcome::Signalled, *index};
        m_refused = reset == Reset::Failed;
    }
    return {};
}

void EventWaiter::end() {
    static_cast<void>(::eventfd_write(m_wakeUp.value(), 1)); // full only if it is ended already
}

} // namespace os
