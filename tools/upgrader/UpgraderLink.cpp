#include "tools/upgrader/UpgraderLink.h"

#include "app/UpgradeSharedRecord.h"
#include "platform/os/NamedObjectFolder.h"

#include <algorithm>
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
    if (!why.empty())
        return nullptr;
    link->startRecord(inUse);
    return link;
}

std::string UpgraderLink::makeObjects() {
    if (m_memory.failure())
        return sentence(kUpgradeRecordName, m_memory.failure());
    if (m_mutex.failure())
        return sentence(kUpgradeMutexName, m_mutex.failure());
    m_record = static_cast<UpgradeSharedRecord*>(m_memory.data());

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

void UpgraderLink::startRecord(bool inUse) {
    if (!inUse) {
        const std::scoped_lock guard(m_mutex);
        *m_record = {};
        return;
    }
    m_outstanding =
        kMaxOutstandingCodes; // an earlier upgrader may have left any number, with a signal or without
}

void UpgraderLink::writePrinterInfo(const UpgradeInfo& info) {
    const std::scoped_lock guard(m_mutex);
    copyText(m_record->printerVersion, info.version);
    copyText(m_record->printerDeviceName, info.deviceName);
    copyText(m_record->printerRegion, info.region);
}

void UpgraderLink::writePackageInfo(const UpgradeInfo& info) {
    const std::scoped_lock guard(m_mutex);
    copyText(m_record->packageVersion, info.version);
    copyText(m_record->packageDeviceName, info.deviceName);
    copyText(m_record->packageRegion, info.region);
}

void UpgraderLink::writePackageSize(std::uint32_t bytes) {
    const std::scoped_lock guard(m_mutex);
    m_record->packageSize = bytes;
}

bool UpgraderLink::send(std::span<const std::uint8_t> codes, Milliseconds patience) {
    for (const std::uint8_t code : codes) {
        if (m_outstanding == kMaxOutstandingCodes && !awaitTaken(patience))
            return false;
        write(code);
    }
    signalCodes();
    return true;
}

void UpgraderLink::write(std::uint8_t code) {
    const std::scoped_lock guard(m_mutex);
    const std::uint8_t slot = m_record->writeIndex % kRingSlots;
    m_record->messageRing[slot] = code;
    m_record->writeIndex = static_cast<std::uint8_t>((slot + 1) % kRingSlots);
    ++m_outstanding;
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
    return UpgraderReply{UpgraderReply::Kind::Command, m_record->uiCommand};
}
