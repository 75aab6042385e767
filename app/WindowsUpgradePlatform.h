#pragma once

#include "app/UpgradePlatform.h"
#include "platform/os/EventWaiter.h"
#include "platform/os/NamedEvent.h"
#include "platform/os/NamedMemory.h"
#include "platform/os/NamedMutex.h"

#include <array>
#include <atomic>
#include <chrono>
#include <optional>

/// The link's objects as named objects of the operating system.
class WindowsUpgradePlatform final : public UpgradePlatform {
public:
    void openEvent(UpgradeEvent event) override;
    void openRecord() override;
    void openMutex() override;
    std::optional<UpgradeSharedRecord> readRecord() override;
    bool writeCommand(std::uint8_t command) override;
    std::optional<UpgradeEvent> waitForEvent() override;
    void endWait() override;
    void setEvent(UpgradeEvent event) override;
    bool lock() override;
    void unlock() override;
    void beginExit() override;

private:
    using Clock = std::chrono::steady_clock;

    std::array<os::NamedEvent, kUpgradeEvents> m_events;
    std::optional<os::NamedMemory> m_record;
    std::optional<os::NamedMutex> m_mutex;
    std::atomic<Clock::time_point> m_lockDeadline = Clock::time_point::max();
    os::EventWaiter m_waiter;
};
