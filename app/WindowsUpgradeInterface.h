#pragma once

#include "app/UpgradeInterface.h"
#include "app/UpgradePlatform.h"
#include "platform/KeltoMutex.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

enum class MessagePayload : std::uint8_t;

/// The link over the shared record and its events: the ring, the display machine, the commands.
///
/// A thread of its own listens. Each handling step, with all that it announces, runs under m_stepLock, so
/// that steps and announcements of several threads never interleave. The mutex of the record is never held
/// across a handler: the listener reads a code and its payload before the step, a command is one write.
///
/// Requires a shared pointer. A step holds a share of the link, the waiting listener holds it weakly, so the
/// last reference can be dropped anywhere, also in a handler. The destructor ends and joins the listener; on
/// the listener itself it detaches the thread instead.
class WindowsUpgradeInterface final : public UpgradeInterface,
                                      public std::enable_shared_from_this<WindowsUpgradeInterface> {
public:
    /// Opens the objects of @p platform and clears `uiCommand`. Thread: the first.
    explicit WindowsUpgradeInterface(std::shared_ptr<UpgradePlatform> platform,
                                     std::vector<std::string> systemFeatures = {},
                                     std::shared_ptr<ACPowerProperty> acConnected = nullptr);
    ~WindowsUpgradeInterface() override;

    void start() override;
    void sendUserAction(UserAction action) override;

    /// Takes that AC power was connected or lost: who was asked to connect it is led on. Thread: any;
    /// handlers run on it. Blocks while another step is handled.
    void handleACPower(bool connected);

    void setDisplayHandler(DisplayHandler handler) override;
    void setProgressHandler(ProgressHandler handler) override;
    void setPrinterInfoHandler(InfoHandler handler) override;
    void setPackageInfoHandler(InfoHandler handler) override;
    void setPackageSizeHandler(PackageSizeHandler handler) override;
    void setRepairAvailableHandler(RepairAvailableHandler handler) override;
    void stop() override;

private:
    class Step;

    static void listen(const std::shared_ptr<UpgradePlatform>& platform,
                       const std::weak_ptr<WindowsUpgradeInterface>& link);

    [[nodiscard]] bool isInStep();
    void handleEvent(UpgradeEvent event);
    void takeCodes();
    void takeCode(std::uint8_t code, const UpgradeSharedRecord& payload);
    void handleMessage(std::uint8_t code);
    void handleFileFound() KELTO_REQUIRES(m_stepLock);

    void deliverPayload(MessagePayload kind, const UpgradeSharedRecord& record) KELTO_REQUIRES(m_stepLock);
    void upgrade() KELTO_REQUIRES(m_stepLock);
    void dismiss() KELTO_REQUIRES(m_stepLock);
    void send(std::uint8_t command);
    void show(UpgradeDisplay display) KELTO_REQUIRES(m_stepLock);
    void announce() KELTO_REQUIRES(m_stepLock);
    void reportProgress(UpgradeProgressMsg stage);
    void reportRepairAvailable(bool available);

    [[nodiscard]] std::optional<UpgradeSharedRecord> readRecord();

    std::shared_ptr<UpgradePlatform> m_platform;
    std::uint8_t m_readIndex = 0; // the listener's own
    std::thread m_listener;

    KeltoMutex m_stepLock; // comes before the mutex of m_platform
    int m_stepDepth KELTO_GUARDED_BY(m_stepLock) = 0;
    UpgradeDisplay m_currentDisplay KELTO_GUARDED_BY(m_stepLock) = UpgradeDisplay::DisplayIdle;
    bool m_repairLatched KELTO_GUARDED_BY(m_stepLock) = false;

    DisplayHandler m_displayHandler;
    ProgressHandler m_progressHandler;
    InfoHandler m_printerInfoHandler;
    InfoHandler m_packageInfoHandler;
    PackageSizeHandler m_packageSizeHandler;
    RepairAvailableHandler m_repairAvailableHandler;
};
