#pragma once

#include "platform/KeltoMutex.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

class Property;

using PropertyQueue = std::deque<std::shared_ptr<Property>>;

/// Where properties are found by group GUID and GUID. The table in which a property stands is what makes it
/// one of a component. The table shares ownership of its properties.
///
/// Each property has two entries in one sorted structure, one under its own key and one under the key that
/// its group shares; a reader sees both or neither. Keys are compared as bytes. Of a property only the
/// identity is asked under a lock, and none goes to its end there.
///
/// Order of locks: m_tableLock, then m_groupLock.
class PropertyTable {
public:
    PropertyTable() = default;
    virtual ~PropertyTable() = default;

    PropertyTable(const PropertyTable&) = delete;
    PropertyTable& operator=(const PropertyTable&) = delete;

    /// Returns true if added; false, with the table as it was, if one with the same group GUID and GUID
    /// stands there already. Requires: @p property is not empty. Thread: any.
    virtual bool addProperty(std::shared_ptr<Property> property);

    /// Returns the property, or nothing. An empty @p guid finds nothing. Thread: any.
    [[nodiscard]] std::shared_ptr<Property> findProperty(std::string_view guid,
                                                         std::string_view groupGuid) const;

    /// Appends every property once, in the order of their keys. Thread: any.
    void getAllProperties(PropertyQueue& properties) const;

    /// Appends the properties of a group in the order of their adding. Thread: any.
    void getGroupProperties(std::string_view groupGuid, PropertyQueue& properties) const;

    /// Removes the property whose fullKey() is @p key, if there is one. Thread: any.
    void removeByKey(std::string_view key);

    /// Removes every property of the group named before the first ":" of @p key. Thread: any.
    void removeGroup(std::string_view key);

protected:
    /// Returns the property whose fullKey() is @p key, or nothing; a key without a GUID finds nothing.
    /// Thread: any.
    [[nodiscard]] std::shared_ptr<Property> findByKey(std::string_view key) const;

    /// The manager holds it around a whole load. Recursive: every operation may be called under it.
    mutable KeltoMutex m_tableLock;

private:
    // Under one key in the order of adding, and never nothing. One list for each key, not one node for each
    // entry: the entries of the groups do not lengthen the way to a property.
    using PropertyMap = std::map<std::string, std::vector<std::shared_ptr<Property>>, std::less<>>;

    std::shared_ptr<Property> firstUnder(std::string_view key) const;
    void eraseEntry(std::string_view key, const std::shared_ptr<Property>& property)
        KELTO_REQUIRES(m_tableLock);

    PropertyMap m_propertyMap KELTO_GUARDED_BY(m_tableLock);
    KeltoMutex m_groupLock;
    std::set<std::string, std::less<>> m_groupSet KELTO_GUARDED_BY(m_groupLock);
};
