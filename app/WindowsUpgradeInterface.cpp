#include "app/WindowsUpgradeInterface.h"

#include "app/UpgradeMessage.h"
#include "platform/Log.h"

#include <cstring>
#include <string>
#include <system_error>
#include <utility>

namespace {

using enum UpgradeDisplay;

// A field that its writer filled to the last byte has no NUL.
std::string textOf(const RecordText& field) { return {field.data(), ::strnlen(field.data(), field.size())}; }

template <typename Handler, typename... Arguments>
void call(const Handler& handler, Arguments&&... arguments) {
    if (handler)
        handler(std::forward<Arguments>(arguments)...);
}

} // namespace

/// One handling step: holds m_stepLock and keeps the link alive. Steps of one thread can be nested.
class KELTO_SCOPED_CAPABILITY WindowsUpgradeInterface::Step {
public:
    explicit Step(WindowsUpgradeInterface& link) KELTO_ACQUIRE(link.m_stepLock)
        : m_link(link.shared_from_this()), m_guard(link.m_stepLock) {
        ++m_link->m_stepDepth;
    }
    ~Step() KELTO_RELEASE() { --m_link->m_stepDepth; }

    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;

private:
    const std::shared_ptr<WindowsUpgradeInterface> m_link; // dropped after m_guard has released the lock
    const KeltoGuard m_guard;
};

WindowsUpgradeInterface::WindowsUpgradeInterface(std::shared_ptr<UpgradePlatform> platform,
                                                 std::vector<std::string> systemFeatures,
                                                 std::shared_ptr<ACPowerProperty> acConnected)
    : UpgradeInterface(std::move(systemFeatures), std::move(acConnected)), m_platform(std::move(platform)) {
    using enum UpgradeEvent;
    for (const UpgradeEvent event : {UiEvent, ComEvent, UiAck, RequestClose, StartConfirm})
        m_platform->openEvent(event);
    m_platform->openRecord();
    static_cast<void>(m_platform->writeCommand(0)); // without the mutex, which comes last; may be absent
    m_platform->openMutex();
}

WindowsUpgradeInterface::~WindowsUpgradeInterface() {
    stop();
    if (m_listener.joinable())
        m_listener.detach(); // this is the listener: it touches nothing of this object any more
}

void WindowsUpgradeInterface::stop() {
    m_platform->beginExit();
    m_platform->endWait();
    const bool isListener = m_listener.get_id() == std::this_thread::get_id();
    if (m_listener.joinable() && !isListener && !isInStep())
        m_listener.join();
}

// Waits for a step of another thread; true only inside a step of the calling thread.
bool WindowsUpgradeInterface::isInStep() {
    const KeltoGuard guard(m_stepLock);
    return m_stepDepth > 0;
}

void WindowsUpgradeInterface::start() {
    if (m_listener.joinable())
        return;
    try {
        m_listener = std::thread(listen, m_platform, weak_from_this());
    } catch (const std::system_error& error) {
        logLine("cannot start the thread that listens to the upgrader: ", error.what());
    }
}

void WindowsUpgradeInterface::setDisplayHandler(DisplayHandler handler) {
    m_displayHandler = std::move(handler);
}

void WindowsUpgradeInterface::setProgressHandler(ProgressHandler handler) {
    m_progressHandler = std::move(handler);
}

void WindowsUpgradeInterface::setPrinterInfoHandler(InfoHandler handler) {
    m_printerInfoHandler = std::move(handler);
}

void WindowsUpgradeInterface::setPackageInfoHandler(InfoHandler handler) {
    m_packageInfoHandler = std::move(handler);
}

void WindowsUpgradeInterface::setPackageSizeHandler(PackageSizeHandler handler) {
    m_packageSizeHandler = std::move(handler);
}

void WindowsUpgradeInterface::setRepairAvailableHandler(RepairAvailableHandler handler) {
    m_repairAvailableHandler = std::move(handler);
}

void WindowsUpgradeInterface::listen(const std::shared_ptr<UpgradePlatform>& platform,
                                     const std::weak_ptr<WindowsUpgradeInterface>& link) {
    while (const std::optional<UpgradeEvent> event = platform->waitForEvent()) {
        // The reference lasts for this one event; it may turn out to be the last.
        const std::shared_ptr<WindowsUpgradeInterface> self = link.lock();
        if (!self)
            return;
        self->handleEvent(*event);
    }
}

void WindowsUpgradeInterface::handleEvent(UpgradeEvent event) {
    switch (event) {
    case UpgradeEvent::UiEvent:
        takeCodes();
        break;
    case UpgradeEvent::RequestClose:
        handleMessage(MsgRequestClose);
        m_platform->setEvent(UpgradeEvent::UiAck);
        break;
    case UpgradeEvent::StartConfirm:
        m_platform->setEvent(UpgradeEvent::UiAck);
        handleMessage(ProgressExtractingPkg);
        break;
    case UpgradeEvent::ComEvent:
    case UpgradeEvent::UiAck:
        break;
    }
}

// Waits for the mutex, so it is never called under m_stepLock.
std::optional<UpgradeSharedRecord> WindowsUpgradeInterface::readRecord() {
    if (!m_platform->lock())
        return {};
    const std::optional<UpgradeSharedRecord> record = m_platform->readRecord();
    m_platform->unlock();
    return record;
}

void WindowsUpgradeInterface::takeCodes() {
    // The number of codes is fixed here; later codes wait for the next signal.
    const std::optional<UpgradeSharedRecord> record = readRecord();
    if (!record || record->writeIndex >= kRingSlots)
        return;
    while (m_readIndex != record->writeIndex) {
        const std::uint8_t code = record->messageRing[m_readIndex];
        const bool hasPayload = messageRule(code).payload != MessagePayload::None;
        const std::optional<UpgradeSharedRecord> current = hasPayload ? readRecord() : record;
        if (!current)
            return;
        takeCode(code, *current);
        m_readIndex = static_cast<std::uint8_t>((m_readIndex + 1) % kRingSlots);
    }
}

void WindowsUpgradeInterface::takeCode(std::uint8_t code, const UpgradeSharedRecord& payload) {
    const Step step(*this);
    deliverPayload(messageRule(code).payload, payload);
    handleMessage(code);
}

void WindowsUpgradeInterface::deliverPayload(MessagePayload kind, const UpgradeSharedRecord& record) {
    switch (kind) {
    case MessagePayload::None:
        break;
    case MessagePayload::PrinterInfo:
        call(m_printerInfoHandler, textOf(record.printerVersion), textOf(record.printerDeviceName),
             textOf(record.printerRegion));
        break;
    case MessagePayload::PackageInfo:
        call(m_packageInfoHandler, textOf(record.packageVersion), textOf(record.packageDeviceName),
             textOf(record.packageRegion));
        break;
    case MessagePayload::PackageSize:
        call(m_packageSizeHandler, record.packageSize);
        break;
    }
}

void WindowsUpgradeInterface::handleMessage(std::uint8_t code) {
    const Step step(*this);
    const MessageRule& rule = messageRule(code);
    switch (rule.effect) {
    case MessageEffect::Nothing:
        break;
    case MessageEffect::Announce:
        announce();
        break;
    case MessageEffect::Show:
        show(rule.display);
        break;
    case MessageEffect::Progress:
        m_currentDisplay = rule.display;
        reportProgress(static_cast<UpgradeProgressMsg>(code));
        announce();
        break;
    case MessageEffect::FileFound:
        handleFileFound();
        break;
    case MessageEffect::LatchRepair:
        m_repairLatched = true;
        show(rule.display);
        break;
    }
}

void WindowsUpgradeInterface::handleFileFound() {
    switch (m_currentDisplay) {
    case DisplayIdle:
        show(hasBattery() && !isACConnected() ? DisplayConnectACPower : DisplayFileFound);
        return;
    case DisplayConnectACPower:
        show(DisplayFileFound);
        return;
    case DisplayFileCorrupted:
    case DisplayFileIncompatible:
    case DisplayFailed:
    case DisplayFileNotFound:
        if (m_repairLatched)
            break;
        reportProgress(UpgradeProgressMsg::ProgressInitiated);
        show(DisplayFileFound);
        return;
    default:
        break;
    }
    reportRepairAvailable(true);
}

void WindowsUpgradeInterface::handleACPower(bool connected) {
    const Step step(*this);
    if (connected && m_currentDisplay == DisplayConnectACPower)
        handleMessage(static_cast<std::uint8_t>(UpgradeMessage::MsgFileFound));
}

void WindowsUpgradeInterface::sendUserAction(UserAction action) {
    const Step step(*this);
    switch (action) {
    case UserAction::ActionUpgrade:
        upgrade();
        break;
    case UserAction::ActionCancel:
        send(CommandCancel);
        break;
    case UserAction::ActionRepair:
        reportRepairAvailable(false);
        upgrade();
        break;
    case UserAction::ActionOk:
        dismiss();
        break;
    case UserAction::ActionOkNoReboot:
        show(DisplayExitUi);
        break;
    case UserAction::ActionClose:
        if (m_currentDisplay == DisplayFileFound || m_currentDisplay == DisplayConnectACPower)
            send(CommandCancel);
        else
            dismiss();
        break;
    case UserAction::ActionReboot:
        send(CommandProceed);
        break;
    case UserAction::ActionUiExiting:
        m_platform->beginExit();
        send(CommandUiExiting);
        break;
    }
}

void WindowsUpgradeInterface::upgrade() {
    show(DisplayInProgress);
    send(CommandStartUpgrade);
}

void WindowsUpgradeInterface::dismiss() {
    reportProgress(UpgradeProgressMsg::ProgressInitiated);
    m_currentDisplay = DisplayIdle;
    if (m_repairLatched)
        m_currentDisplay = DisplaySysIntegrityFailed;
    else
        send(CommandProceed);
    announce();
}

void WindowsUpgradeInterface::send(std::uint8_t command) {
    if (!m_platform->lock())
        return;
    const bool isWritten = m_platform->writeCommand(command);
    m_platform->unlock();
    if (isWritten)
        m_platform->setEvent(UpgradeEvent::ComEvent);
}

void WindowsUpgradeInterface::show(UpgradeDisplay display) {
    m_currentDisplay = display;
    announce();
}

void WindowsUpgradeInterface::announce() { call(m_displayHandler, m_currentDisplay); }

void WindowsUpgradeInterface::reportProgress(UpgradeProgressMsg stage) { call(m_progressHandler, stage); }

void WindowsUpgradeInterface::reportRepairAvailable(bool available) {
    call(m_repairAvailableHandler, available);
}
