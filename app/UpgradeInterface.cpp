#include "app/UpgradeInterface.h"

#include "app/WindowsUpgradeInterface.h"
#include "app/WindowsUpgradePlatform.h"

#include "prefs/SystemFeatures.h"
#include "property/BoolProperty.h"
#include "property/ExternalAppProperty.h"
#include "property/PropertyVocabulary.h"

#include <utility>

UpgradeInterface::UpgradeInterface(std::vector<std::string> systemFeatures,
                                   std::shared_ptr<ACPowerProperty> acConnected)
    : m_systemFeatures(std::move(systemFeatures)), m_acConnected(std::move(acConnected)) {}

UpgradeInterface::~UpgradeInterface() = default;

bool UpgradeInterface::hasBattery() const { return hasFeature(m_systemFeatures, "Battery"); }

bool UpgradeInterface::isACConnected() const { return !m_acConnected || m_acConnected->getValue(); }

std::shared_ptr<UpgradeInterface> createUpgradeInterface() {
    return std::make_shared<WindowsUpgradeInterface>(std::make_shared<WindowsUpgradePlatform>());
}

std::shared_ptr<UpgradeInterface> createUpgradeInterface(const std::shared_ptr<PICLServerAgent>& agent,
                                                         const std::shared_ptr<PropertyManager>& manager) {
    std::vector<std::string> systemFeatures = readSystemFeatures();
    const auto acConnected = makeExternalProperty<BoolProperty>(
        true, agent, manager, vocabulary::components::kFirmwareDriver, vocabulary::groups::kBattery,
        vocabulary::properties::kBatteryACConnected);
    auto link = std::make_shared<WindowsUpgradeInterface>(std::make_shared<WindowsUpgradePlatform>(),
                                                          std::move(systemFeatures), acConnected);
    acConnected->addListener([weak = std::weak_ptr(link)](const std::shared_ptr<Property>& changed) {
        if (const std::shared_ptr<WindowsUpgradeInterface> alive = weak.lock())
            alive->handleACPower(static_cast<const BoolProperty&>(*changed).getValue());
    });
    return link;
}
