#include "tools/upgrader/UpgraderLink.h"

#include "app/UpgradeSharedRecord.h"
#include "platform/os/NamedObjectFolder.h"

#include <algorithm>
#include <cstddef>
#include <mutex>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kLookInterval{1};

static_assert(UpgraderLink::kMaxTextBytes == kRecordTextSize - 1);

void copyText(RecordText& field, const std::string& text) {
    field.fill('\0');
    std::copy_n(text.begin(), std::min(text.size(), UpgraderLink::kMaxTextBytes), field.begin());
}

std::span<std::byte> bytesOf(UpgradeSharedRecord& record) {
    return std::as_writable_bytes(std::span(&record, 1));
}

std::string sentence(std::string_view object, const std::error_code& why) {
    return "cannot make \"" + std::string(object) + "\" in " + os::namedObjectFolder() + ": " + why.message();
}

} // namespace

UpgraderLink::UpgraderLink()
    : m_memory(kUpgradeRecordName, sizeof(UpgradeSharedRecord)), m_mutex(kUpgradeMutexName) {}

std::unique_ptr<UpgraderLink> UpgraderLink::create(std::string& why) {
    // Asked before the first object of our own holds it open.
    const bool inUse = os::NamedEvent::isInUse(eventName(UpgradeEvent::UiEvent));
    std::unique_ptr<UpgraderLink> link(new UpgraderLink);
    why = link->makeObjects();
    if (why.empty() && !link->startRecord(inUse))
        why = sentence(kUpgradeRecordName, std::make_error_code(std::errc::io_error));
    return why.empty() ? std::move(link) : nullptr;
}

std::string UpgraderLink::makeObjects() {
    if (m_memory.failure())
        return sentence(kUpgradeRecordName, m_memory.failure());
    if (m_mutex.failure())
        return sentence(kUpgradeMutexName, m_mutex.failure());

    using enum UpgradeEvent;
    for (const UpgradeEvent which : {UiEvent, RequestClose, StartConfirm, ComEvent, UiAck}) {
        const bool waits = which == ComEvent || which == UiAck;
        std::error_code failure;
        event(which) = os::NamedEvent::create(eventName(which),
                                              waits ? os::EventRight::Wait : os::EventRight::Set, failure);
        if (failure)
            return sentence(eventName(which), failure);
        if (waits)
            m_waiter.watch(event(which), static_cast<std::size_t>(which));
    }
    return {};
}

bool UpgraderLink::startRecord(bool inUse) {
    if (inUse) {
        // An earlier upgrader may have left any number, with a signal or without.
        m_outstanding = kMaxOutstandingCodes;
        return true;
    }
    const std::scoped_lock guard(m_mutex);
    UpgradeSharedRecord zeros{};
    return m_memory.write(bytesOf(zeros));
}

// `uiCommand` stays as it is: the application clears it once without the mutex.
template <typename Change>
bool UpgraderLink::changeRecord(Change change) {
    const std::scoped_lock guard(m_mutex);
    UpgradeSharedRecord record{};
    if (!m_memory.read(bytesOf(record)))
        return false;
    change(record);
    return m_memory.write(bytesOf(record).first(offsetof(UpgradeSharedRecord, uiCommand)));
}

void UpgraderLink::writePrinterInfo(const UpgradeInfo& info) {
    changeRecord([&](UpgradeSharedRecord& record) {
        copyText(record.printerVersion, info.version);
        copyText(record.printerDeviceName, info.deviceName);
        copyText(record.printerRegion, info.region);
    });
}

void UpgraderLink::writePackageInfo(const UpgradeInfo& info) {
    changeRecord([&](UpgradeSharedRecord& record) {
        copyText(record.packageVersion, info.version);
        copyText(record.packageDeviceName, info.deviceName);
        copyText(record.packageRegion, info.region);
    });
}

void UpgraderLink::writePackageSize(std::uint32_t bytes) {
    changeRecord([bytes](UpgradeSharedRecord& record) { record.packageSize = bytes; });
}

bool UpgraderLink::send(std::span<const std::uint8_t> codes, Milliseconds patience) {
    for (const std::uint8_t code : codes) {
        if (m_outstanding == kMaxOutstandingCodes && !awaitTaken(patience))
            return false;
        if (!write(code))
            return false;
    }
    signalCodes();
    return true;
}

bool UpgraderLink::write(std::uint8_t code) {
    const bool isWritten = changeRecord([code](UpgradeSharedRecord& record) {
        const std::uint8_t slot = record.writeIndex % kRingSlots;
        record.messageRing[slot] = code;
        record.writeIndex = static_cast<std::uint8_t>((slot + 1) % kRingSlots);
    });
    m_outstanding += isWritten ? 1 : 0;
    return isWritten;
}

bool UpgraderLink::awaitTaken(Milliseconds patience) {
    const auto deadline = Clock::now() + patience;
    for (int signal = 0; signal < 2; ++signal) {
        signalCodes();
        if (!awaitSignalTaken(deadline))
            return false;
    }
    m_outstanding = 0;
    return true;
}

bool UpgraderLink::awaitSignalTaken(Clock::time_point deadline) {
    while (event(UpgradeEvent::UiEvent).isSet()) {
        if (Clock::now() >= deadline)
            return false;
        std::this_thread::sleep_for(kLookInterval);
    }
    return true;
}

std::optional<UpgraderReply> UpgraderLink::awaitReply(Milliseconds patience) {
    const os::EventWaiter::Result result = m_waiter.wait(patience);
    if (result.outcome != os::EventWaiter::Outcome::Signalled)
        return {};
    if (static_cast<UpgradeEvent>(result.index) == UpgradeEvent::UiAck)
        return UpgraderReply{UpgraderReply::Kind::Acknowledgement};
    const std::scoped_lock guard(m_mutex);
    UpgradeSharedRecord record{};
    if (!m_memory.read(bytesOf(record)))
        return {};
    return UpgraderReply{UpgraderReply::Kind::Command, record.uiCommand};
}
