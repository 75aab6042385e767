#include "app/KQUpgradeInterface.h"

#include "app/UpgradeInterface.h"

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

// A handler of the link that reaches the model for as long as it lives.
template <typename... Parameters>
auto handlerFor(const std::weak_ptr<KQUpgradeInterface>& model,
                void (KQUpgradeInterface::*take)(Parameters...)) {
    return [model, take](const auto&... arguments) {
        if (const std::shared_ptr<KQUpgradeInterface> self = model.lock())
            (self.get()->*take)(arguments...);
    };
}

} // namespace

KQUpgradeInterface::KQUpgradeInterface(std::shared_ptr<UpgradeInterface> link) : m_link(std::move(link)) {}

KQUpgradeInterface::~KQUpgradeInterface() = default;

void KQUpgradeInterface::takeDisplay(UpgradeDisplay display) {
    {
        const std::scoped_lock guard(m_fieldLock);
        if (m_upgradeState != StateExitUi) // the screens may not have read it yet, and nothing follows it
            m_upgradeState = stateOf(display).value_or(m_upgradeState);
    }
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
    link->setDisplayHandler(handlerFor(weak, &KQUpgradeInterface::takeDisplay));
    link->setProgressHandler(handlerFor(weak, &KQUpgradeInterface::takeProgress));
    link->setPrinterInfoHandler(handlerFor(weak, &KQUpgradeInterface::takePrinterInfo));
    link->setPackageInfoHandler(handlerFor(weak, &KQUpgradeInterface::takePackageInfo));
    link->setPackageSizeHandler(handlerFor(weak, &KQUpgradeInterface::takePackageSize));
    link->setRepairAvailableHandler(handlerFor(weak, &KQUpgradeInterface::takeRepairAvailable));
    link->start();
    return model;
}
