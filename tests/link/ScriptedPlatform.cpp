#include "tests/link/ScriptedPlatform.h"

#include "app/WindowsUpgradeInterface.h"
#include "platform/ThreadFactory.h"
#include "property/BoolProperty.h"
#include "property/ExternalAppProperty.h"
#include "property/PropertyVocabulary.h"

#include "tests/support/DeviceRootTest.h"

void ScriptedPlatform::openEvent(UpgradeEvent event) { note("open " + std::string(eventName(event))); }

void ScriptedPlatform::openRecord() { note("open " + std::string(kUpgradeRecordName)); }

void ScriptedPlatform::openMutex() {
    note("open " + std::string(kUpgradeMutexName) + " uiCommand " + std::to_string(record.uiCommand));
}

std::optional<UpgradeSharedRecord> ScriptedPlatform::readRecord() {
    return hasRecord ? std::optional(record) : std::nullopt;
}

bool ScriptedPlatform::writeCommand(std::uint8_t command) {
    record.uiCommand = command;
    return hasRecord;
}

std::optional<UpgradeEvent> ScriptedPlatform::waitForEvent() {
    std::unique_lock guard(m_lock);
    m_waiting = true;
    m_changed.notify_all();
    m_changed.wait(guard, [this] { return m_ended || !m_events.empty(); });
    m_waiting = false;
    if (m_ended)
        return {};
    const UpgradeEvent event = m_events.front();
    m_events.pop_front();
    return event;
}

void ScriptedPlatform::endWait() {
    const std::scoped_lock guard(m_lock);
    m_ended = true;
    m_changed.notify_all();
}

bool ScriptedPlatform::isWaiting() const {
    const std::scoped_lock guard(m_lock);
    return m_waiting;
}

bool ScriptedPlatform::waitIsToEnd() const {
    const std::scoped_lock guard(m_lock);
    return m_ended;
}

bool ScriptedPlatform::waitHasEnded() const {
    const std::scoped_lock guard(m_lock);
    return m_ended && !m_waiting;
}

void ScriptedPlatform::setEvent(UpgradeEvent event) {
    if (event == UpgradeEvent::UiAck)
        note("acknowledge");
    else
        note("command " + std::to_string(record.uiCommand));
}

bool ScriptedPlatform::lock() {
    if (!hasMutex)
        return false;
    std::unique_lock guard(m_lock);
    m_mutexAwaited = m_mutexKept;
    m_changed.wait(guard, [this] { return !m_mutexKept && !m_mutexHeld; });
    m_mutexAwaited = false;
    m_mutexHeld = true;
    return true;
}

void ScriptedPlatform::unlock() {
    const std::scoped_lock guard(m_lock);
    m_mutexHeld = false;
    m_changed.notify_all();
}

void ScriptedPlatform::keepMutex(bool keep) {
    const std::scoped_lock guard(m_lock);
    m_mutexKept = keep;
    m_changed.notify_all();
}

bool ScriptedPlatform::isMutexAwaited() const {
    const std::scoped_lock guard(m_lock);
    return m_mutexAwaited;
}

void ScriptedPlatform::raise(UpgradeEvent event) {
    const std::scoped_lock guard(m_lock);
    m_events.push_back(event);
    m_changed.notify_all();
}

bool ScriptedPlatform::signal(UpgradeEvent event) {
    raise(event);
    std::unique_lock guard(m_lock);
    return m_changed.wait_for(guard, kDeadline, [this] { return m_waiting && m_events.empty(); });
}

void ScriptedPlatform::queue(const std::vector<std::uint8_t>& codes) {
    for (const std::uint8_t code : codes) {
        record.messageRing[record.writeIndex] = code;
        record.writeIndex = static_cast<std::uint8_t>((record.writeIndex + 1) % kRingSlots);
    }
}

void ScriptedPlatform::note(const std::string& line) {
    const std::scoped_lock guard(m_lock);
    m_notes.push_back((m_mutexHeld ? "!" : "") + line);
}

std::string ScriptedPlatform::takeNotes() {
    const std::scoped_lock guard(m_lock);
    std::string joined;
    for (const std::string& line : std::exchange(m_notes, {}))
        joined += (joined.empty() ? "" : ", ") + line;
    return joined;
}

namespace {

std::shared_ptr<UpgradeInterface::ACPowerProperty> acPower(bool connected) {
    const auto manager = std::make_shared<PropertyManager>(std::make_shared<ThreadFactory>(kThreadPriority),
                                                           kThreadPriority, kThreadPriority, L"", L"");
    return makeExternalProperty<BoolProperty>(
        connected, nullptr, manager, vocabulary::components::kFirmwareDriver, vocabulary::groups::kBattery,
        vocabulary::properties::kBatteryACConnected);
}

} // namespace

ScriptedLink::ScriptedLink(std::vector<std::string> systemFeatures, bool acConnected) {
    link = std::make_shared<WindowsUpgradeInterface>(platform, std::move(systemFeatures),
                                                     acConnected ? nullptr : acPower(false));
    auto number = [this](const char* what) {
        return
            [this, what](auto value) { platform->note(what + std::to_string(static_cast<unsigned>(value))); };
    };
    auto info = [this](const char* what) {
        return [this, what](const std::string& version, const std::string& deviceName,
                            const std::string& region) {
            platform->note(std::string(what) + version + '/' + deviceName + '/' + region);
        };
    };
    link->setDisplayHandler(number("display "));
    link->setProgressHandler(number("progress "));
    link->setPrinterInfoHandler(info("printer "));
    link->setPackageInfoHandler(info("package "));
    link->setPackageSizeHandler(number("size "));
    link->setRepairAvailableHandler(number("repair "));
    platform->takeNotes();
    link->start();
}

std::string ScriptedLink::take(const std::vector<std::uint8_t>& codes) {
    platform->queue(codes);
    EXPECT_TRUE(platform->signal(UpgradeEvent::UiEvent));
    return platform->takeNotes();
}

std::string ScriptedLink::act(UserAction action) {
    link->sendUserAction(action);
    return platform->takeNotes();
}
