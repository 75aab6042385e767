#include "property/UInt32Property.h"

#include "property/ValueText.h"

UInt32Property::UInt32Property(std::uint32_t value, std::string_view guid, std::string_view name,
                               std::string_view groupGuid, std::string_view groupName)
    : Property(guid, name, groupGuid, groupName), m_value(value) {}

UInt32Property::UInt32Property(std::string_view value, std::string_view guid, std::string_view name,
                               std::string_view groupGuid, std::string_view groupName)
    : UInt32Property(parseUInt32(value), guid, name, groupGuid, groupName) {}

std::string UInt32Property::toString() const { return std::to_string(getValue()); }

void UInt32Property::setFromString(std::string_view text) { setValue(parseUInt32(text)); }

void UInt32Property::loadFromString(std::string_view text) { m_value = parseUInt32(text); }

void UInt32Property::setValue(std::uint32_t value) {
    if (m_value.exchange(value) != value)
        notifyListeners();
}
