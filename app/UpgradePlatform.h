#pragma once

#include "app/UpgradeSharedRecord.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

/// The events between the upgrader and the application. The first three to wait on stand in the order in
/// which a wait prefers them.
enum class UpgradeEvent : std::uint8_t { UiEvent, RequestClose, StartConfirm, ComEvent, UiAck };

constexpr std::size_t kUpgradeEvents = 5;

/// The name of each event, at the index of its UpgradeEvent.
constexpr std::array<std::string_view, kUpgradeEvents> kUpgradeEventNames{
    R"(Global\UPGRADE_UI_EVENT)", R"(Global\DLL_REQUEST_CLOSE)", R"(Global\DLL_UI_START_CONFIRM)",
    R"(Global\UPGRADE_COM_EVENT)", R"(Global\UPGRADE_UI_ACK)"};

constexpr std::string_view kUpgradeRecordName = R"(Global\UPGRADE_SHARED_MEMORY)";
constexpr std::string_view kUpgradeMutexName = R"(Global\UPGRADE_SHMEM_MUTEX)";

constexpr std::string_view eventName(UpgradeEvent event) {
    return kUpgradeEventNames[static_cast<std::size_t>(event)];
}

/// What the link needs of the system it runs on, and its only contact with it.
///
/// An object that cannot be opened leaves the operations on it without effect; nothing here reports a
/// failure.
class UpgradePlatform {
public:
    virtual ~UpgradePlatform() = default;

    /// Opens an event that the upgrader made: the first three for waiting, the others for setting.
    /// Requires: called before waitForEvent() and setEvent(). Thread: the first.
    virtual void openEvent(UpgradeEvent event) = 0;

    /// Opens the shared record, or creates it. Thread: the first.
    virtual void openRecord() = 0;

    /// Opens the mutex that guards the record, or creates it. Thread: the first.
    virtual void openMutex() = 0;

    /// Returns a copy of the record, or nothing if the record is absent or does not have its size. Requires:
    /// openRecord() was called and the mutex is locked. Thread-safe.
    [[nodiscard]] virtual std::optional<UpgradeSharedRecord> readRecord() = 0;

    /// Writes `uiCommand` of the record. Returns false if the record is absent, does not have its size or
    /// cannot be written. Requires: as readRecord(), but the first write needs no lock. Thread-safe.
    [[nodiscard]] virtual bool writeCommand(std::uint8_t command) = 0;

    /// Waits, without limit, until one of the first three events is set, and resets it; the first in their
    /// order if several are. Returns nothing when endWait() was called or the wait failed: then no later wait
    /// will do better. Blocks. Thread: one at a time.
    virtual std::optional<UpgradeEvent> waitForEvent() = 0;

    /// Ends the wait under way and every later one. Thread: any.
    virtual void endWait() = 0;

    /// Thread: any.
    virtual void setEvent(UpgradeEvent event) = 0;

    /// Locks the mutex of the record; not recursive. Blocks until the mutex is free, but after beginExit()
    /// for at most 2 s from that call; returns false and logs if the mutex is not free by then. Returns false
    /// if the mutex is absent. Thread-safe.
    [[nodiscard]] virtual bool lock() = 0;
    virtual void unlock() = 0;

    /// Limits the waits in lock(), also those in progress. Only the first call counts. Thread-safe.
    virtual void beginExit() = 0;
};
