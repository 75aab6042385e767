#pragma once

#include "property/BoolProperty.h"
#include "property/ExternalAppProperty.h"
#include "property/StringProperty.h"
#include "property/UInt32Property.h"

#include <cstdint>
#include <memory>
#include <utility>

class PICLServerAgent;
class PublishingPropertyManager;

/// What the screens of the printer need to know, as properties of this program: what is stored of them in its
/// property file wins over the defaults, and all of them are published.
///
/// Nothing changes after construction but the two screen properties, which are empty until
/// setScreenResolution(), and the resolution of the print head. Thread: the first; the properties themselves
/// may be used from any.
class DisplayPreferences {
public:
    using DotsPerInch = ExternalAppProperty<UInt32Property, unsigned int>;

    /// Enters the properties in @p manager.
    explicit DisplayPreferences(std::shared_ptr<PublishingPropertyManager> manager);

    DisplayPreferences(const DisplayPreferences&) = delete;
    DisplayPreferences& operator=(const DisplayPreferences&) = delete;

    /// Enters the size of the screen in pixels. A stored size wins. Requires: called once.
    void setScreenResolution(std::uint32_t width, std::uint32_t height);

    /// Takes the resolution of the print head, which belongs to another program. Requires: called once.
    void setDotsPerInch(std::shared_ptr<DotsPerInch> dotsPerInch) { m_dotsPerInch = std::move(dotsPerInch); }

    [[nodiscard]] BoolProperty& showFullPartName() const { return *m_showFullPartName; }
    [[nodiscard]] UInt32Property* screenResolutionWidth() const { return m_screenResolutionWidth.get(); }
    [[nodiscard]] UInt32Property* screenResolutionHeight() const { return m_screenResolutionHeight.get(); }
    [[nodiscard]] StringProperty& printerStatusDisplay() const { return *m_printerStatusDisplay; }
    [[nodiscard]] UInt32Property& storedJobsUIView() const { return *m_storedJobsUIView; }
    [[nodiscard]] UInt32Property& measurementUnit() const { return *m_measurementUnit; }
    [[nodiscard]] DotsPerInch* dotsPerInch() const { return m_dotsPerInch.get(); }
    [[nodiscard]] BoolProperty& hourFormat24() const { return *m_hourFormat24; }
    [[nodiscard]] BoolProperty& secretDevelopmentSettings() const { return *m_secretDevelopmentSettings; }
    [[nodiscard]] StringProperty& language() const { return *m_language; }
    [[nodiscard]] BoolProperty& invertScreen() const { return *m_invertScreen; }

private:
    const std::shared_ptr<BoolProperty> m_showFullPartName;
    std::shared_ptr<UInt32Property> m_screenResolutionWidth;
    std::shared_ptr<UInt32Property> m_screenResolutionHeight;
    const std::shared_ptr<StringProperty> m_printerStatusDisplay;
    const std::shared_ptr<UInt32Property> m_storedJobsUIView;
    const std::shared_ptr<UInt32Property> m_measurementUnit;
    std::shared_ptr<DotsPerInch> m_dotsPerInch;
    const std::shared_ptr<BoolProperty> m_hourFormat24;
    const std::shared_ptr<BoolProperty> m_secretDevelopmentSettings;
    const std::shared_ptr<StringProperty> m_language;
    const std::shared_ptr<BoolProperty> m_invertScreen;
    const std::shared_ptr<PublishingPropertyManager> m_propertyManager;
};

/// Returns new display preferences. Asks @p agent, which may be empty, for the resolution of the print head.
/// Blocks at most ApplicationIdentity::externalPropertyTimeout() for the answer.
std::shared_ptr<DisplayPreferences>
createDisplayPreferences(const std::shared_ptr<PublishingPropertyManager>& manager,
                         const std::shared_ptr<PICLServerAgent>& agent);
