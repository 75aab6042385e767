#include "property/PropertyTable.h"

#include "property/Property.h"
#include "property/PropertyKey.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory_resource>
#include <utility>

bool PropertyTable::addProperty(std::shared_ptr<Property> property) {
    const std::string group = property->getGroupGuid();
    std::string key = fullKey(group, property->getGuid());

    const KeltoGuard guard(m_tableLock);
    if (m_propertyMap.contains(key))
        return false;
    m_propertyMap[std::move(key)].push_back(property);
    m_propertyMap[groupKey(group)].push_back(std::move(property));
    const KeltoGuard groupGuard(m_groupLock);
    m_groupSet.insert(group);
    return true;
}

std::shared_ptr<Property> PropertyTable::findProperty(std::string_view guid,
                                                      std::string_view groupGuid) const {
    if (guid.empty())
        return nullptr;
    std::array<std::byte, 128> room; // of the usual key, which costs no allocation then
    std::pmr::monotonic_buffer_resource memory(room.data(), room.size());
    std::pmr::string key(&memory);
    appendFullKey(key, groupGuid, guid);
    return firstUnder(key);
}

std::shared_ptr<Property> PropertyTable::findByKey(std::string_view key) const {
    return splitKey(key).guid.empty() ? nullptr : firstUnder(key);
}

std::shared_ptr<Property> PropertyTable::firstUnder(std::string_view key) const {
    const KeltoGuard guard(m_tableLock);
    const auto found = m_propertyMap.find(key);
    return found == m_propertyMap.end() ? nullptr : found->second.front();
}

void PropertyTable::getAllProperties(PropertyQueue& properties) const {
    const KeltoGuard guard(m_tableLock);
    for (const auto& [key, entries] : m_propertyMap) {
        if (!splitKey(key).guid.empty())
            properties.insert(properties.end(), entries.begin(), entries.end());
    }
}

void PropertyTable::getGroupProperties(std::string_view groupGuid, PropertyQueue& properties) const {
    const std::string key = groupKey(groupGuid);
    const KeltoGuard guard(m_tableLock);
    const auto found = m_propertyMap.find(key);
    if (found != m_propertyMap.end())
        properties.insert(properties.end(), found->second.begin(), found->second.end());
}

void PropertyTable::removeByKey(std::string_view key) {
    std::shared_ptr<Property> property; // outlives the guard, and so does what its end sets off
    const KeltoGuard guard(m_tableLock);
    const auto found = m_propertyMap.find(key);
    if (found == m_propertyMap.end())
        return;
    property = found->second.front();
    if (fullKey(*property) != key)
        return; // the entry of a whole group
    eraseEntry(groupKey(property->getGroupGuid()), property);
    eraseEntry(key, property);
}

void PropertyTable::removeGroup(std::string_view key) {
    const std::string_view group = splitKey(key).groupGuid;
    {
        const KeltoGuard guard(m_groupLock);
        const auto known = m_groupSet.find(group);
        if (known != m_groupSet.end())
            m_groupSet.erase(known);
    }
    PropertyQueue properties; // outlives the guard, as above
    const KeltoGuard guard(m_tableLock);
    getGroupProperties(group, properties);
    m_propertyMap.erase(groupKey(group));
    for (const std::shared_ptr<Property>& property : properties)
        eraseEntry(fullKey(*property), property);
}

void PropertyTable::eraseEntry(std::string_view key, const std::shared_ptr<Property>& property) {
    const auto found = m_propertyMap.find(key);
    if (found == m_propertyMap.end())
        return;
    auto& entries = found->second;
    const auto entry = std::ranges::find(entries, property);
    if (entry != entries.end())
        entries.erase(entry);
    if (entries.empty())
        m_propertyMap.erase(found);
}
