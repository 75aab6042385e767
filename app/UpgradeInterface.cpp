#include "app/UpgradeInterface.h"

#include "app/WindowsUpgradeInterface.h"
#include "app/WindowsUpgradePlatform.h"

#include "prefs/SystemFeatures.h"
#include "property/BoolProperty.h"
#include "property/ExternalAppProperty.h"
#include "property/PropertyVocabulary.h"

#include <utility>

UpgradeInterface::UpgradeInterface(PowerFacts powerFacts) : m_powerFacts(std::move(powerFacts)) {}

UpgradeInterface::~UpgradeInterface() = default;

bool UpgradeInterface::hasBattery() const { return m_powerFacts.hasBattery(); }

bool UpgradeInterface::isACConnected() const { return m_powerFacts.isACConnected(); }

namespace {

std::shared_ptr<WindowsUpgradeInterface> createLink(PowerFacts powerFacts) {
    return std::make_shared<WindowsUpgradeInterface>(std::make_shared<WindowsUpgradePlatform>(),
                                                     std::move(powerFacts));
}

} // namespace

std::shared_ptr<UpgradeInterface> createUpgradeInterface() { return createLink({}); }

std::shared_ptr<UpgradeInterface> createUpgradeInterface(const std::shared_ptr<PICLServerAgent>& agent,
                                                         const std::shared_ptr<PropertyManager>& manager) {
    const bool hasBattery = hasFeature(readSystemFeatures(), "Battery");
    const auto acConnected = makeExternalProperty<BoolProperty>(
        true, agent, manager, vocabulary::components::kFirmwareDriver, vocabulary::groups::kBattery,
        vocabulary::properties::kBatteryACConnected);
    auto link = createLink({.hasBattery = [hasBattery] { return hasBattery; },
                            .isACConnected = [acConnected] { return acConnected->getValue(); }});
    acConnected->addListener([weak = std::weak_ptr(link)](const std::shared_ptr<Property>& changed) {
        if (const std::shared_ptr<WindowsUpgradeInterface> alive = weak.lock())
            alive->handleACPower(static_cast<const BoolProperty&>(*changed).getValue());
    });
    return link;
}
