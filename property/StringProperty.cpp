#include "property/StringProperty.h"

StringProperty::StringProperty(std::string_view value, std::string_view guid, std::string_view name,
                               std::string_view groupGuid, std::string_view groupName)
    : Property(guid, name, groupGuid, groupName), m_value(value) {}

std::string StringProperty::toString() const { return getValue(); }

void StringProperty::setFromString(std::string_view text) { setValue(text); }

void StringProperty::loadFromString(std::string_view text) {
    const KeltoGuard guard(m_valueLock);
    m_value = text;
}

void StringProperty::setValue(std::string_view value) {
    if (store(value))
        notifyListeners();
}

std::string StringProperty::getValue() const {
    const KeltoGuard guard(m_valueLock);
    return m_value;
}

// Returns whether that changed the value: the comparison and the store are one step.
bool StringProperty::store(std::string_view value) {
    const KeltoGuard guard(m_valueLock);
    if (m_value == value)
        return false;
    m_value = value;
    return true;
}
