#include "tools/picl/PropertyType.h"

#include "property/PropertyVocabulary.h"
#include "property/ValueText.h"
#include "tools/picl/VisibleText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>

namespace {

namespace properties = vocabulary::properties;

constexpr std::size_t kGuidSize = 36;

struct TypedProperty {
    std::string_view guid;
    PropertyType type;
};

constexpr std::array kTypes{
    TypedProperty{properties::kNameOfPropertyFile.guid, PropertyType::Text},
    TypedProperty{properties::kNameOfPropertyOverrideFile.guid, PropertyType::Text},
    TypedProperty{properties::kLoadProperties.guid, PropertyType::Trigger},
    TypedProperty{properties::kStoreProperties.guid, PropertyType::Trigger},
    TypedProperty{properties::kPropertyPublishingPeriodInMs.guid, PropertyType::Number},
    TypedProperty{properties::kDotsPerInch.guid, PropertyType::Number},
    TypedProperty{properties::kPropertyLoadingError.guid, PropertyType::Truth},
    TypedProperty{properties::kBatteryACConnected.guid, PropertyType::Truth},
    TypedProperty{properties::kFirmwareVersion.guid, PropertyType::Text},
    TypedProperty{properties::kFirmwareBuildNumber.guid, PropertyType::Text},
    TypedProperty{properties::kFullPartName.guid, PropertyType::Truth},
    TypedProperty{properties::kScreenResolutionWidth.guid, PropertyType::Number},
    TypedProperty{properties::kScreenResolutionHeight.guid, PropertyType::Number},
    TypedProperty{properties::kPrinterStatusDisplay.guid, PropertyType::Text},
    TypedProperty{properties::kStoredJobsUIView.guid, PropertyType::Number},
    TypedProperty{properties::kMeasurementUnit.guid, PropertyType::Number},
    TypedProperty{properties::kHourFormat24.guid, PropertyType::Truth},
    TypedProperty{properties::kSecretDevelopmentSettings.guid, PropertyType::Truth},
    TypedProperty{properties::kLanguage.guid, PropertyType::Text},
    TypedProperty{properties::kInvertScreen.guid, PropertyType::Truth},
    TypedProperty{properties::kConnectedPrinterIPAddress.guid, PropertyType::Text},
    TypedProperty{properties::kManufacturingReportLocation.guid, PropertyType::Text},
    TypedProperty{properties::kYBFileLocation.guid, PropertyType::Text},
    TypedProperty{properties::kManufacturingDisplayMode.guid, PropertyType::Truth},
    TypedProperty{properties::kEmulateSupplies.guid, PropertyType::Truth},
};

bool isDebugZone(std::string_view guid) {
    return std::ranges::any_of(vocabulary::kDebugZones, [guid](const vocabulary::DebugZone& zone) {
        return zone.property.guid == guid;
    });
}

// As a program prints a number: nothing but digits, no more than 32 bits.
std::optional<std::uint32_t> number(std::string_view text) {
    std::uint32_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [behind, failure] = std::from_chars(text.data(), end, value);
    if (failure != std::errc{} || behind != end)
        return {};
    return value;
}

bool areSameNumber(std::string_view one, std::string_view other) {
    const std::optional<std::uint32_t> value = number(one);
    return value && value == number(other);
}

// In whatever case of its letters.
bool isTruth(std::string_view text) {
    const std::string lower = withoutCase(text);
    return lower == "true" || lower == "false";
}

bool areSameTruth(std::string_view one, std::string_view other) {
    return isTruth(one) && isTruth(other) && parseBoolean(one) == parseBoolean(other);
}

} // namespace

PropertyType typeOf(std::string_view guid) {
    // A substitute is called by the GUIDs of the owner and of the property.
    if (guid.size() == kGuidSize + 1 + kGuidSize)
        guid.remove_prefix(kGuidSize + 1);
    const auto found = std::ranges::find(kTypes, guid, &TypedProperty::guid);
    if (found != kTypes.end())
        return found->type;
    return isDebugZone(guid) ? PropertyType::Truth : PropertyType::Unknown;
}

std::string_view nameOf(PropertyType type) {
    static constexpr std::array<std::string_view, 5> kNames{"", "number", "truth", "text", "trigger"};
    return kNames[static_cast<std::size_t>(type)];
}

bool meanTheSame(PropertyType type, std::string_view one, std::string_view other) {
    switch (type) {
    case PropertyType::Number:
        return one == other || areSameNumber(one, other);
    case PropertyType::Truth:
    case PropertyType::Trigger:
        return one == other || areSameTruth(one, other);
    case PropertyType::Text:
        return one == other;
    case PropertyType::Unknown:
        break;
    }
    return one == other || areSameTruth(one, other) || areSameNumber(one, other);
}

bool isValue(PropertyType type, std::string_view text) {
    if (type == PropertyType::Number)
        return number(text).has_value();
    return (type != PropertyType::Truth && type != PropertyType::Trigger) || isTruth(text);
}

std::string_view formOf(PropertyType type) {
    static constexpr std::array<std::string_view, 5> kForms{"", "a whole number from 0 to 4294967295",
                                                            "true or false", "", "true or false"};
    return kForms[static_cast<std::size_t>(type)];
}
