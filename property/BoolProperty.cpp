#include "property/BoolProperty.h"

#include "property/ValueText.h"

BoolProperty::BoolProperty(std::string_view value, std::string_view guid, std::string_view name,
                           std::string_view groupGuid, std::string_view groupName)
    : BoolProperty(parseBoolean(value), guid, name, groupGuid, groupName) {}

std::string BoolProperty::toString() const { return getValue() ? "True" : "False"; }

void BoolProperty::setFromString(std::string_view text) { setValue(parseBoolean(text)); }

void BoolProperty::loadFromString(std::string_view text) { loadValue(parseBoolean(text)); }

void BoolProperty::setValue(bool value) {
    if (m_value.exchange(value) != value)
        notifyListeners();
}
