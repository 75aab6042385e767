#pragma once

#include "property/BoolProperty.h"
#include "property/StringProperty.h"

#include <memory>

class PublishingPropertyManager;

/// Preferences that belong to this one application, as stored properties: what the property file has of them
/// wins over the defaults. Thread: the first; the properties themselves may be used from any.
class LocalPreferences {
public:
    /// Enters the properties in @p manager.
    explicit LocalPreferences(PublishingPropertyManager& manager);

    LocalPreferences(const LocalPreferences&) = delete;
    LocalPreferences& operator=(const LocalPreferences&) = delete;

    [[nodiscard]] StringProperty& printerIPAddress() const { return *m_printerIPAddress; }
    [[nodiscard]] StringProperty& mfgReportStoragePath() const { return *m_mfgReportStoragePath; }
    [[nodiscard]] StringProperty& mfgYBFilePath() const { return *m_mfgYBFilePath; }
    [[nodiscard]] BoolProperty& mfgMode() const { return *m_mfgMode; }
    [[nodiscard]] BoolProperty& emulateSupplies() const { return *m_emulateSupplies; }

private:
    const std::shared_ptr<StringProperty> m_printerIPAddress;
    const std::shared_ptr<StringProperty> m_mfgReportStoragePath;
    const std::shared_ptr<StringProperty> m_mfgYBFilePath;
    const std::shared_ptr<BoolProperty> m_mfgMode;
    const std::shared_ptr<BoolProperty> m_emulateSupplies;
};
