#pragma once

#include "platform/KeltoMutex.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

class Property;
class PropertyTable;

/// The mirrors of other programs' properties, one table for each program that owns some. A mirror lives as
/// long as it stands here, or somebody holds it. Thread: any.
class ExternalTables {
public:
    /// Returns the mirror, or nothing.
    [[nodiscard]] std::shared_ptr<Property> find(std::string_view component, std::string_view group,
                                                 std::string_view guid) const;

    /// Returns whether @p mirror was added; false if one of the same key stands there.
    bool add(std::string_view component, std::shared_ptr<Property> mirror);

    /// Removes the mirror, if there is one.
    void remove(std::string_view component, std::string_view group, std::string_view guid);

private:
    [[nodiscard]] std::shared_ptr<PropertyTable> tableOf(std::string_view component) const;

    mutable KeltoMutex m_lock; // never held together with the lock of a table
    std::map<std::string, std::shared_ptr<PropertyTable>, std::less<>> m_tables KELTO_GUARDED_BY(m_lock);
};
