#pragma once

#include "app/UpgradePlatform.h"
#include "platform/os/EventWaiter.h"
#include "platform/os/NamedEvent.h"
#include "platform/os/NamedMemory.h"
#include "platform/os/NamedMutex.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// The three texts about a printer or a package, each UTF-8 of at most 49 bytes.
struct UpgradeInfo {
    std::string version;
    std::string deviceName;
    std::string region;
};

/// What came from the application.
struct UpgraderReply {
    enum class Kind { Command, Acknowledgement };
    Kind kind = Kind::Command;
    std::uint8_t command = 0; ///< Where it is a command.
};

/// The upgrader's side of the link: it makes the named objects, sends codes and reads commands.
///
/// No two threads use one object. Nothing tells an upgrader which codes the application has taken, but two
/// signals do: a signal that is taken after another one was taken means that the application had come back to
/// its wait, and so was done with all that stood in the ring at the first.
class UpgraderLink {
public:
    using Milliseconds = std::chrono::milliseconds;

    /// How many bytes a text of the record holds.
    static constexpr std::size_t kMaxTextBytes = 49;

    /// Opens the objects, or creates them. A record that no application has open is filled with zeros; one in
    /// use is continued. Returns null on failure and puts a sentence about it into @p why.
    static std::unique_ptr<UpgraderLink> create(std::string& why);

    /// Write a payload. Longer texts are cut. No effect if the record is damaged: send() reports that.
    void writePrinterInfo(const UpgradeInfo& info);
    void writePackageInfo(const UpgradeInfo& info);
    void writePackageSize(std::uint32_t bytes);

    /// Writes @p codes into the ring and signals once; where they do not fit, waits until the application has
    /// taken what is outstanding. Returns false if it does not within @p patience or the record is damaged:
    /// then the codes from there on are not written. Blocks.
    [[nodiscard]] bool send(std::span<const std::uint8_t> codes, Milliseconds patience);
    [[nodiscard]] bool send(std::uint8_t code, Milliseconds patience) { return send({&code, 1}, patience); }

    /// The two steps of send(). write() returns false if the record is damaged. Requires: fewer than 24 codes
    /// outstanding.
    [[nodiscard]] bool write(std::uint8_t code);
    void signalCodes() { event(UpgradeEvent::UiEvent).set(); }

    /// Waits until the application has taken every code. Returns false if it has not within @p patience.
    /// Blocks.
    [[nodiscard]] bool awaitTaken(Milliseconds patience);

    /// Signals the application to close, or confirms its start; it answers each with an acknowledgement.
    void requestClose() { event(UpgradeEvent::RequestClose).set(); }
    void confirmStart() { event(UpgradeEvent::StartConfirm).set(); }

    /// Waits for the next command or acknowledgement. Returns nothing if none comes within @p patience or the
    /// record is damaged. Blocks.
    [[nodiscard]] std::optional<UpgraderReply> awaitReply(Milliseconds patience);

private:
    UpgraderLink();

    os::NamedEvent& event(UpgradeEvent which) { return m_events[static_cast<std::size_t>(which)]; }
    std::string makeObjects();
    bool startRecord(bool inUse);

    /// Calls @p change with a copy of the record and writes the upgrader's fields back, under the mutex.
    /// Returns false if the record is damaged.
    template <typename Change>
    bool changeRecord(Change change);
    bool awaitSignalTaken(std::chrono::steady_clock::time_point deadline);

    std::array<os::NamedEvent, kUpgradeEvents> m_events;
    os::NamedMemory m_memory; // guarded by m_mutex
    os::NamedMutex m_mutex;
    os::EventWaiter m_waiter;
    int m_outstanding = 0; // codes of which it is not known that they were taken
};
