#pragma once

#include "property/Property.h"

#include <atomic>
#include <cstdint>

/// A property that is an unsigned number of 32 bits.
class UInt32Property : public Property {
public:
    UInt32Property(std::uint32_t value, std::string_view guid, std::string_view name,
                   std::string_view groupGuid, std::string_view groupName);

    /// Takes @p value as parseUInt32() reads it, and throws as it does.
    UInt32Property(std::string_view value, std::string_view guid, std::string_view name,
                   std::string_view groupGuid, std::string_view groupName);

    /// Returns decimal digits. Thread: any.
    [[nodiscard]] std::string toString() const override;
    void setFromString(std::string_view text) override;
    void loadFromString(std::string_view text) override;
    [[nodiscard]] std::string getStringValue() const override { return toString(); }

    /// Stores @p value and notifies if it differs from the stored one. Of several threads that change the
    /// value at once each notifies. Thread: any. Blocks while the listeners run.
    virtual void setValue(std::uint32_t value);

    [[nodiscard]] std::uint32_t getValue() const { return m_value; }

private:
    std::atomic<std::uint32_t> m_value;
};
