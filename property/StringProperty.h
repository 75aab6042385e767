#pragma once

#include "property/Property.h"

/// A property that is a text, taken as bytes.
class StringProperty : public Property {
public:
    StringProperty(std::string_view value, std::string_view guid, std::string_view name,
                   std::string_view groupGuid, std::string_view groupName);

    /// Returns the value as it is. Thread: any.
    [[nodiscard]] std::string toString() const override;
    void setFromString(std::string_view text) override;
    void loadFromString(std::string_view text) override;
    [[nodiscard]] std::string getStringValue() const override { return toString(); }

    /// Stores @p value and notifies if its length or a byte of it differs from the stored one. Of several
    /// threads that change the value at once each notifies. Thread: any. Blocks while the listeners run.
    virtual void setValue(std::string_view value);

    [[nodiscard]] virtual std::string getValue() const;

private:
    [[nodiscard]] bool store(std::string_view value);

    mutable KeltoMutex m_valueLock;
    std::string m_value KELTO_GUARDED_BY(m_valueLock);
};
