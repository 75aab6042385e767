#pragma once

#include "app/UpgradeTypes.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class BoolProperty;
class PICLServerAgent;
class PropertyManager;
template <typename T, typename V>
class ExternalAppProperty;

/// The link to the upgrader: it reports what the upgrader does through handlers, and takes the user's
/// decisions.
///
/// Handlers are stored by value and replaced whole; an empty one is skipped. They run on the thread on which
/// a step is handled (the link's listener, or the caller of sendUserAction()), one at a time, and may call
/// sendUserAction() themselves. Strings are UTF-8 as the upgrader wrote them.
class UpgradeInterface {
public:
    using DisplayHandler = std::function<void(UpgradeDisplay)>;
    using ProgressHandler = std::function<void(UpgradeProgressMsg)>;
    using InfoHandler = std::function<void(std::string version, std::string deviceName, std::string region)>;
    using PackageSizeHandler = std::function<void(std::uint32_t bytes)>;
    using RepairAvailableHandler = std::function<void(bool available)>;
    using ACPowerProperty = ExternalAppProperty<BoolProperty, bool>;

    UpgradeInterface(const UpgradeInterface&) = delete;
    UpgradeInterface& operator=(const UpgradeInterface&) = delete;
    virtual ~UpgradeInterface();

    /// Starts to listen to the upgrader. If the thread for that cannot be created, logs that and listens to
    /// nothing. Requires: the handlers are set; nothing is read before. Thread: the first.
    virtual void start() = 0;

    /// Carries out what the user decided. Blocks while another step is handled and, to send a command, while
    /// the upgrader holds the mutex of the record: without limit, during the exit for at most 2 s, after
    /// which the command is not sent. Thread-safe; handlers run on the calling thread.
    virtual void sendUserAction(UserAction action) = 0;

    /// Requires: called before start(). Thread: the first. The same goes for the five that follow.
    virtual void setDisplayHandler(DisplayHandler handler) = 0;
    virtual void setProgressHandler(ProgressHandler handler) = 0;
    virtual void setPrinterInfoHandler(InfoHandler handler) = 0;
    virtual void setPackageInfoHandler(InfoHandler handler) = 0;
    virtual void setPackageSizeHandler(PackageSizeHandler handler) = 0;
    virtual void setRepairAvailableHandler(RepairAvailableHandler handler) = 0;

    /// Ends the listening for good and waits until the step under way is done, its acknowledgement included:
    /// a program that is about to end calls it, so that the end does not overtake the answer. Inside a
    /// step, on any thread, it only ends the listening. Thread: any. Blocks for one step; the wait for the
    /// mutex of the record ends after 2 s.
    virtual void stop() = 0;

    /// Returns whether the feature list contains "Battery". Thread-safe.
    [[nodiscard]] bool hasBattery() const;

    /// Returns whether the printer is on AC power; true without a property. Thread-safe.
    [[nodiscard]] bool isACConnected() const;

protected:
    /// @p acConnected may be empty.
    explicit UpgradeInterface(std::vector<std::string> systemFeatures = {},
                              std::shared_ptr<ACPowerProperty> acConnected = nullptr);

private:
    const std::vector<std::string> m_systemFeatures;
    const std::shared_ptr<ACPowerProperty> m_acConnected;
};

/// Returns the link over the named objects of the operating system, built in any case: where an object cannot
/// be opened, it stays silent. Thread: the first.
std::shared_ptr<UpgradeInterface> createUpgradeInterface();

/// Returns the same, for the printer whose features the feature list tells, and whose AC power the firmware's
/// property "Battery AC Connected" tells through @p agent, which may be empty. A printer that nobody tells of
/// is on AC power; a substitute for the property then stands in @p manager. Who was asked to connect AC power
/// before the firmware took its property back is not led on by it. Thread: the first. Blocks at most
/// ApplicationIdentity::externalPropertyTimeout() for the property, and while frames are written.
std::shared_ptr<UpgradeInterface> createUpgradeInterface(const std::shared_ptr<PICLServerAgent>& agent,
                                                         const std::shared_ptr<PropertyManager>& manager);
