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

struct UpgradeSharedRecord;

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

    /// Makes the objects, or joins them where they exist. A record that no application has open starts anew,
    /// from zeros; one in use is carried on. Returns null on failure and puts a sentence about it into @p
    /// why.
    static std::unique_ptr<UpgraderLink> create(std::string& why);

    /// Requires: texts of at most kMaxTextBytes; what is longer is cut.
    void writePrinterInfo(const UpgradeInfo& info);
    void writePackageInfo(const UpgradeInfo& info);
    void writePackageSize(std::uint32_t bytes);

    /// Writes @p codes into the ring and signals once; where they do not fit, waits until the application has
    /// taken what is outstanding. Returns false if it does not within @p patience: then the codes from there
    /// on are not written. Blocks.
    [[nodiscard]] bool send(std::span<const std::uint8_t> codes, Milliseconds patience);
    [[nodiscard]] bool send(std::uint8_t code, Milliseconds patience) { return send({&code, 1}, patience); }

    /// The two steps of send(), for who wants them apart. Requires: fewer than 24 codes outstanding.
    void write(std::uint8_t code);
    void signalCodes() { event(UpgradeEvent::UiEvent).set(); }

    /// Waits until the application has taken every code. Returns false if it has not within @p patience.
    /// Blocks.
    [[nodiscard]] bool awaitTaken(Milliseconds patience);

    /// Signals the application to close, or confirms its start; it answers each with an acknowledgement.
    void requestClose() { event(UpgradeEvent::RequestClose).set(); }
    void confirmStart() { event(UpgradeEvent::StartConfirm).set(); }

    /// Waits for the next command or acknowledgement. Returns nothing if none comes within @p patience.
    /// Blocks.
    [[nodiscard]] std::optional<UpgraderReply> awaitReply(Milliseconds patience);

private:
    UpgraderLink();

    os::NamedEvent& event(UpgradeEvent which) { return m_events[static_cast<std::size_t>(which)]; }
    std::string makeObjects();
    void startRecord(bool inUse);
    bool awaitSignalTaken(std::chrono::steady_clock::time_point deadline);

    std::array<os::NamedEvent, kUpgradeEvents> m_events;
    os::NamedMemory m_memory;
    os::NamedMutex m_mutex;
    os::EventWaiter m_waiter;
    UpgradeSharedRecord* m_record = nullptr; // guarded by m_mutex
    int m_outstanding = 0;                   // codes of which it is not known that they were taken
};
