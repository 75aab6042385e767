#include "app/WindowsUpgradePlatform.h"

#include "platform/Log.h"

#include <cstddef>
#include <span>
#include <thread>

namespace {

constexpr std::size_t kWaitedEvents = 3;
constexpr std::chrono::seconds kLockTimeoutAtExit{2};
constexpr std::chrono::milliseconds kLockRetryInterval{2};

std::size_t indexOf(UpgradeEvent event) { return static_cast<std::size_t>(event); }

} // namespace

void WindowsUpgradePlatform::openEvent(UpgradeEvent event) {
    const bool waits = indexOf(event) < kWaitedEvents;
    os::NamedEvent& place = m_events[indexOf(event)];
    place = os::NamedEvent::open(eventName(event), waits ? os::EventRight::Wait : os::EventRight::Set);
    if (waits)
        m_waiter.watch(place, indexOf(event));
}

void WindowsUpgradePlatform::openRecord() {
    m_record.emplace(kUpgradeRecordName, sizeof(UpgradeSharedRecord));
}

void WindowsUpgradePlatform::openMutex() { m_mutex.emplace(kUpgradeMutexName); }

std::optional<UpgradeSharedRecord> WindowsUpgradePlatform::readRecord() {
    UpgradeSharedRecord record{};
    if (!m_record->read(std::as_writable_bytes(std::span(&record, 1))))
        return {};
    return record;
}

bool WindowsUpgradePlatform::writeCommand(std::uint8_t command) {
    return m_record->write(std::as_bytes(std::span(&command, 1)), offsetof(UpgradeSharedRecord, uiCommand));
}

std::optional<UpgradeEvent> WindowsUpgradePlatform::waitForEvent() {
    const os::EventWaiter::Result result = m_waiter.wait();
    if (result.outcome != os::EventWaiter::Outcome::Signalled)
        return {};
    return static_cast<UpgradeEvent>(result.index);
}

void WindowsUpgradePlatform::endWait() { m_waiter.end(); }

void WindowsUpgradePlatform::setEvent(UpgradeEvent event) { m_events[indexOf(event)].set(); }

// A blocking lock of the file could not be ended at exit, hence the retries.
bool WindowsUpgradePlatform::lock() {
    if (m_mutex->failure())
        return false;
    while (!m_mutex->tryLock()) {
        if (Clock::now() >= m_lockDeadline.load()) {
            logLine("another process holds \"" + std::string(kUpgradeMutexName) +
                    "\"; exiting without access to the shared record");
            return false;
        }
        std::this_thread::sleep_for(kLockRetryInterval);
    }
    return true;
}

void WindowsUpgradePlatform::unlock() { m_mutex->unlock(); }

void WindowsUpgradePlatform::beginExit() {
    Clock::time_point unlimited = Clock::time_point::max();
    m_lockDeadline.compare_exchange_strong(unlimited, Clock::now() + kLockTimeoutAtExit);
}
