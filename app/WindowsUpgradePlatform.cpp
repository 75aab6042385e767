#include "app/WindowsUpgradePlatform.h"

#include "app/UpgradeSharedRecord.h"

namespace {

constexpr std::size_t kWaitedEvents = 3;

std::size_t indexOf(UpgradeEvent event) { return static_cast<std::size_t>(event); }

} // namespace

void WindowsUpgradePlatform::openEvent(UpgradeEvent event) {
    const auto right = indexOf(event) < kWaitedEvents ? os::EventRight::Wait : os::EventRight::Set;
    m_events[indexOf(event)] = os::NamedEvent::open(eventName(event), right);
}

UpgradeSharedRecord* WindowsUpgradePlatform::openRecord() {
    m_record.emplace(kUpgradeRecordName, sizeof(UpgradeSharedRecord));
    return static_cast<UpgradeSharedRecord*>(m_record->data());
}

void WindowsUpgradePlatform::openMutex() { m_mutex.emplace(kUpgradeMutexName); }

std::optional<UpgradeEvent> WindowsUpgradePlatform::waitForEvent() {
    const std::array<const os::NamedEvent*, kWaitedEvents> waited{&m_events[0], &m_events[1], &m_events[2]};
    const os::EventWaiter::Result result = m_waiter.wait(waited);
    if (result.outcome != os::EventWaiter::Outcome::Signalled)
        return {};
    return static_cast<UpgradeEvent>(result.index);
}

void WindowsUpgradePlatform::endWait() { m_waiter.end(); }

void WindowsUpgradePlatform::setEvent(UpgradeEvent event) { m_events[indexOf(event)].set(); }

void WindowsUpgradePlatform::lock() {
    if (m_mutex)
        m_mutex->lock();
}

void WindowsUpgradePlatform::unlock() {
    if (m_mutex)
        m_mutex->unlock();
}
