#include "platform/os/EventWaiter.h"

#include "platform/os/NamedEvent.h"
#include "platform/os/linux/SystemCall.h"

#include <algorithm>
#include <array>
#include <climits>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <vector>

namespace os {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kForever = -1;
constexpr int kPassedOver = -1; // poll leaves a negative descriptor alone

enum class Reset { Done, NothingThere, Failed };

// Empties the pipe, which is how an event resets itself. Another process that waits on the event may have been
// faster.
Reset resetEvent(int pipe) {
    std::array<char, 4096> signals{};
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

int remainingMs(Clock::time_point deadline) {
    if (deadline == Clock::time_point::max())
        return kForever;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return static_cast<int>(std::clamp<decltype(left)>(left, 0, INT_MAX));
}

bool isRefused(const pollfd& entry) { return (entry.revents & (POLLERR | POLLNVAL)) != 0; }

} // namespace

EventWaiter::EventWaiter() : m_wakeUp(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

EventWaiter::Result EventWaiter::wait(std::span<const NamedEvent* const> events,
                                      std::optional<std::chrono::milliseconds> timeout) {
    if (!m_wakeUp.isOpen())
        return {};
    std::vector<pollfd> entries;
    for (const NamedEvent* event : events) {
        const bool waitable = event->m_right == EventRight::Wait;
        entries.push_back({waitable ? event->m_pipe.value() : kPassedOver, POLLIN, 0});
    }
    entries.push_back({m_wakeUp.value(), POLLIN, 0});

    const auto deadline = timeout ? Clock::now() + *timeout : Clock::time_point::max();
    for (;;) {
        const int ready = ::poll(entries.data(), entries.size(), remainingMs(deadline));
        if (ready < 0 && errno != EINTR)
            return {};
        if (ready == 0)
            return {Outcome::TimedOut};
        if (ready < 0)
            continue;
        if (entries.back().revents != 0 || std::ranges::any_of(entries, isRefused))
            return {};
        const auto set = std::ranges::find_if(entries, [](const pollfd& e) { return e.revents != 0; });
        switch (resetEvent(set->fd)) {
        case Reset::Done:
            return {Outcome::Signalled, static_cast<std::size_t>(set - entries.begin())};
        case Reset::Failed:
            return {};
        case Reset::NothingThere:
            break;
        }
    }
}

void EventWaiter::end() {
    static_cast<void>(::eventfd_write(m_wakeUp.value(), 1)); // full only if it is ended already
}

} // namespace os
