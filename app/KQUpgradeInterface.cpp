#include "app/KQUpgradeInterface.h"

#include "app/UpgradeInterface.h"

#include <QThread>
#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

namespace {

// The first ten values are the same on both sides; the last three are not.
std::optional<KQUpgradeInterface::StateUpgrade> stateOf(UpgradeDisplay display) {
    using enum UpgradeDisplay;
    switch (display) {
    case DisplayCompletedNoReboot:
        return KQUpgradeInterface::StateUpgradeCompletedNoReboot;
    case DisplayConnectACPower:
        return KQUpgradeInterface::StateConnectACPower;
    case DisplayExitUi:
        return KQUpgradeInterface::StateExitUi;
    default:
        break;
    }
    if (display > DisplayIdle)
        return {};
    return static_cast<KQUpgradeInterface::StateUpgrade>(display);
}

KQUpgradeInterface::InProgStatus stageOf(UpgradeProgressMsg stage) {
    using enum UpgradeProgressMsg;
    switch (stage) {
    case ProgressInitiated:
        return KQUpgradeInterface::UpgradeInitiated;
    case ProgressPreparingFolderTemp:
        return KQUpgradeInterface::PreparingFolderTemp;
    case ProgressExtractPkgTemp:
        return KQUpgradeInterface::ExtractPkgTemp;
    case ProgressValidatingPkg:
    case ProgressValidatingPkgNext:
        return KQUpgradeInterface::ValidatingPkg;
    case ProgressValidatingCfg:
        return KQUpgradeInterface::ValidatingCfg;
    case ProgressBackingupCurrent:
        return KQUpgradeInterface::BackingupCurrent;
    case ProgressEndingOtherAppsAndDlls:
        return KQUpgradeInterface::EndingOtherAppsAndDlls;
    case ProgressExtractingPkg:
        return KQUpgradeInterface::ExtractingPkg;
    case ProgressVerifyingFile:
        return KQUpgradeInterface::VerifyingFile;
    case ProgressFinalOperation:
        return KQUpgradeInterface::FinalOperation;
    }
    return KQUpgradeInterface::UpgradeInitiated;
}

// The codes of a full ring lead to fewer announcements.
constexpr std::size_t kMaxPending = 100;

// The address identifies the handler of the link that calls take.
template <auto take>
constexpr char kHandler = 0;

// A handler of the link that does nothing once the model is gone.
template <auto take>
auto handlerFor(const std::weak_ptr<KQUpgradeInterface>& model) {
    return [model](const auto&... arguments) {
        if (const std::shared_ptr<KQUpgradeInterface> self = model.lock())
            self->announce(
                {&kHandler<take>, [raw = self.get(), arguments...] { (raw->*take)(arguments...); }});
    };
}

// The handler of displays; after an exit it announces nothing else. The link calls it from one thread at a
// time.
auto displayHandlerFor(const std::weak_ptr<KQUpgradeInterface>& model) {
    return [handler = handlerFor<&KQUpgradeInterface::takeDisplay>(model),
            exits = false](UpgradeDisplay display) mutable {
        exits = exits || display == UpgradeDisplay::DisplayExitUi;
        handler(exits ? UpgradeDisplay::DisplayExitUi : display);
    };
}

} // namespace

KQUpgradeInterface::KQUpgradeInterface(std::shared_ptr<UpgradeInterface> link) : m_link(std::move(link)) {}

KQUpgradeInterface::~KQUpgradeInterface() = default;

void KQUpgradeInterface::announce(Announcement announcement) {
    bool isFirst = false;
    {
        const std::scoped_lock guard(m_pendingLock);
        isFirst = m_pending.empty();
        const auto superseded = std::ranges::find(m_pending, announcement.handler, &Announcement::handler);
        if (m_pending.size() >= kMaxPending && superseded != m_pending.end())
            m_pending.erase(superseded);
        m_pending.push_back(std::move(announcement));
    }
    if (QThread::currentThread() == thread())
        deliverPending();
    else if (isFirst)
        QMetaObject::invokeMethod(this, &KQUpgradeInterface::deliverPending, Qt::QueuedConnection);
}

// Not until the queue is empty: an upgrader that never pauses must not keep the GUI thread from its events.
void KQUpgradeInterface::deliverPending() {
    for (std::size_t i = 0; i < 2 * kMaxPending; ++i) {
        std::function<void()> deliver;
        {
            const std::scoped_lock guard(m_pendingLock);
            if (m_pending.empty())
                return;
            deliver = std::move(m_pending.front().deliver);
            m_pending.pop_front();
        }
        deliver();
    }
    QMetaObject::invokeMethod(this, &KQUpgradeInterface::deliverPending, Qt::QueuedConnection);
}

void KQUpgradeInterface::takeDisplay(UpgradeDisplay display) {
    m_upgradeState = stateOf(display).value_or(m_upgradeState);
    emit upgradeStateChanged();
}

void KQUpgradeInterface::takeProgress(UpgradeProgressMsg stage) {
    store(m_upgradeInProg, stageOf(stage), &KQUpgradeInterface::upgradeInProgChanged);
}

void KQUpgradeInterface::takePrinterInfo(const std::string& version, const std::string& deviceName,
                                         const std::string& region) {
    storeText(m_printerVersion, version, &KQUpgradeInterface::printerVersionChanged);
    storeText(m_printerDeviceName, deviceName, &KQUpgradeInterface::printerDeviceNameChanged);
    storeText(m_printerRegion, region, &KQUpgradeInterface::printerRegionChanged);
}

void KQUpgradeInterface::takePackageInfo(const std::string& version, const std::string& deviceName,
                                         const std::string& region) {
    storeText(m_packageVersion, version, &KQUpgradeInterface::packageVersionChanged);
    storeText(m_packageDeviceName, deviceName, &KQUpgradeInterface::packageDeviceNameChanged);
    storeText(m_packageRegion, region, &KQUpgradeInterface::packageRegionChanged);
}

void KQUpgradeInterface::takePackageSize(std::uint32_t bytes) {
    store(m_packageSize, bytes, &KQUpgradeInterface::packageSizeChanged);
}

void KQUpgradeInterface::takeRepairAvailable(bool available) {
    store(m_enableRepair, available, &KQUpgradeInterface::enableRepairChanged);
}

void KQUpgradeInterface::userClickedUpgrade() { m_link->sendUserAction(UserAction::ActionUpgrade); }

void KQUpgradeInterface::userClickedCancel() { m_link->sendUserAction(UserAction::ActionCancel); }

void KQUpgradeInterface::userClickedRepair() { m_link->sendUserAction(UserAction::ActionRepair); }

void KQUpgradeInterface::rebootPrinter() { m_link->sendUserAction(UserAction::ActionReboot); }

void KQUpgradeInterface::uiExiting() { m_link->sendUserAction(UserAction::ActionUiExiting); }

void KQUpgradeInterface::userClickedOK() { m_link->sendUserAction(UserAction::ActionOk); }

void KQUpgradeInterface::userClickedClose() { m_link->sendUserAction(UserAction::ActionClose); }

void KQUpgradeInterface::userClickedOkNoReboot() { m_link->sendUserAction(UserAction::ActionOkNoReboot); }

std::shared_ptr<KQUpgradeInterface> createUpgradeModel(const std::shared_ptr<UpgradeInterface>& link) {
    auto model = std::make_shared<KQUpgradeInterface>(link);
    const std::weak_ptr<KQUpgradeInterface> weak = model;
    link->setDisplayHandler(displayHandlerFor(weak));
    link->setProgressHandler(handlerFor<&KQUpgradeInterface::takeProgress>(weak));
    link->setPrinterInfoHandler(handlerFor<&KQUpgradeInterface::takePrinterInfo>(weak));
    link->setPackageInfoHandler(handlerFor<&KQUpgradeInterface::takePackageInfo>(weak));
    link->setPackageSizeHandler(handlerFor<&KQUpgradeInterface::takePackageSize>(weak));
    link->setRepairAvailableHandler(handlerFor<&KQUpgradeInterface::takeRepairAvailable>(weak));
    link->start();
    return model;
}
