#include "app/UpgradeInterface.h"

#include "app/WindowsUpgradeInterface.h"
#include "app/WindowsUpgradePlatform.h"

#include <utility>

UpgradeInterface::UpgradeInterface(PowerFacts powerFacts) : m_powerFacts(std::move(powerFacts)) {}

UpgradeInterface::~UpgradeInterface() = default;

bool UpgradeInterface::hasBattery() const { return m_powerFacts.hasBattery(); }

bool UpgradeInterface::isACConnected() const { return m_powerFacts.isACConnected(); }

std::shared_ptr<UpgradeInterface> createUpgradeInterface() {
    return std::make_shared<WindowsUpgradeInterface>(std::make_shared<WindowsUpgradePlatform>());
}
