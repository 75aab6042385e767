#include "prefs/LocalPreferences.h"

#include "property/MakeProperty.h"
#include "property/PublishingPropertyManager.h"

namespace properties = vocabulary::properties;

namespace {

template <typename T, typename V>
std::shared_ptr<T> make(const VocabularyEntry& property, V value) {
    return makeProperty<T>(vocabulary::groups::kLocallyStoredPreferences, property, value);
}

} // namespace

LocalPreferences::LocalPreferences(PublishingPropertyManager& manager)
    : m_printerIPAddress(make<StringProperty>(properties::kConnectedPrinterIPAddress, "192.168.1.100")),
      m_mfgReportStoragePath(make<StringProperty>(properties::kManufacturingReportLocation, R"(C:\Store)")),
      m_mfgYBFilePath(make<StringProperty>(properties::kYBFileLocation, R"(\\server\manufacturing\yb)")),
      m_mfgMode(make<BoolProperty>(properties::kManufacturingDisplayMode, true)),
      m_emulateSupplies(make<BoolProperty>(properties::kEmulateSupplies, false)) {
    manager.addPersistentProperty(m_printerIPAddress);
    manager.addPersistentProperty(m_mfgReportStoragePath);
    manager.addPersistentProperty(m_mfgYBFilePath);
    manager.addPersistentProperty(m_mfgMode);
    manager.addPersistentProperty(m_emulateSupplies);
}
