#pragma once

#include "property/Property.h"

#include <atomic>
#include <concepts>

/// A property that is true or false.
class BoolProperty : public Property {
public:
    /// Takes nothing but a bool here, so that a literal text does not become one.
    BoolProperty(std::same_as<bool> auto value, std::string_view guid, std::string_view name,
                 std::string_view groupGuid, std::string_view groupName)
        : Property(guid, name, groupGuid, groupName), m_value(value) {}

    /// Takes @p value as parseBoolean() reads it.
    BoolProperty(std::string_view value, std::string_view guid, std::string_view name,
                 std::string_view groupGuid, std::string_view groupName);

    /// Returns "True" or "False". Thread: any.
    [[nodiscard]] std::string toString() const override;
    void setFromString(std::string_view text) override;
    void loadFromString(std::string_view text) override;
    [[nodiscard]] std::string getStringValue() const override { return toString(); }

    /// Stores @p value and notifies if it differs from the stored one. Of several threads that change the
    /// value at once each notifies. Thread: any. Blocks while the listeners run.
    virtual void setValue(bool value);

    /// Stores @p value and tells nobody. Thread: any.
    virtual void loadValue(bool value) { m_value = value; }

    [[nodiscard]] virtual bool getValue() const { return m_value; }

private:
    std::atomic<bool> m_value;
};
