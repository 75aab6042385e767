#include "prefs/DisplayPreferences.h"

#include "prefs/ApplicationIdentity.h"
#include "property/MakeProperty.h"
#include "property/PublishingPropertyManager.h"

#include <utility>

namespace properties = vocabulary::properties;

namespace {

constexpr unsigned int kDefaultDotsPerInch = 300;

template <typename T, typename V>
std::shared_ptr<T> make(const VocabularyEntry& property, V value) {
    return makeProperty<T>(vocabulary::groups::kDisplayPreferences, property, value);
}

} // namespace

DisplayPreferences::DisplayPreferences(std::shared_ptr<PublishingPropertyManager> manager)
    : m_showFullPartName(make<BoolProperty>(properties::kFullPartName, true)),
      m_printerStatusDisplay(make<StringProperty>(properties::kPrinterStatusDisplay, "ready")),
      m_storedJobsUIView(make<UInt32Property>(properties::kStoredJobsUIView, 0U)),
      m_measurementUnit(make<UInt32Property>(properties::kMeasurementUnit, 0U)),
      m_hourFormat24(make<BoolProperty>(properties::kHourFormat24, false)),
      m_secretDevelopmentSettings(make<BoolProperty>(properties::kSecretDevelopmentSettings,
                                                     !ApplicationIdentity::instance().runsOnPrinter())),
      m_language(make<StringProperty>(properties::kLanguage, "english")),
      m_invertScreen(make<BoolProperty>(properties::kInvertScreen, false)),
      m_propertyManager(std::move(manager)) {
    m_propertyManager->addProperty(m_printerStatusDisplay);
    m_propertyManager->addPersistentProperty(m_showFullPartName);
    m_propertyManager->addPersistentProperty(m_storedJobsUIView);
    m_propertyManager->addPersistentProperty(m_measurementUnit);
    m_propertyManager->addPersistentProperty(m_hourFormat24);
    m_propertyManager->addProperty(m_secretDevelopmentSettings);
    m_propertyManager->addPersistentProperty(m_language);
    m_propertyManager->addPersistentProperty(m_invertScreen);
}

void DisplayPreferences::setScreenResolution(std::uint32_t width, std::uint32_t height) {
    m_screenResolutionWidth = make<UInt32Property>(properties::kScreenResolutionWidth, width);
    m_propertyManager->addPersistentProperty(m_screenResolutionWidth);
    m_screenResolutionHeight = make<UInt32Property>(properties::kScreenResolutionHeight, height);
    m_propertyManager->addPersistentProperty(m_screenResolutionHeight);
}

std::shared_ptr<DisplayPreferences>
createDisplayPreferences(const std::shared_ptr<PublishingPropertyManager>& manager,
                         const std::shared_ptr<PICLServerAgent>& agent) {
    auto preferences = std::make_shared<DisplayPreferences>(manager);
    preferences->setDotsPerInch(makeExternalProperty<UInt32Property>(
        kDefaultDotsPerInch, agent, manager, vocabulary::components::kFirmwareDriver,
        vocabulary::groups::kGeneral, properties::kDotsPerInch));
    return preferences;
}
