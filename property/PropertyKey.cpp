#include "property/PropertyKey.h"

#include "property/Property.h"

std::string fullKey(std::string_view groupGuid, std::string_view guid) {
    std::string key;
    appendFullKey(key, groupGuid, guid);
    return key;
}

std::string fullKey(const Property& property) { return fullKey(property.getGroupGuid(), property.getGuid()); }

std::string groupKey(std::string_view groupGuid) { return fullKey(groupGuid, {}); }

SplitKey splitKey(std::string_view key) {
    const std::size_t separator = key.find(kKeySeparator);
    if (separator == std::string_view::npos)
        return {key, key};
    return {key.substr(0, separator), key.substr(separator + 1)};
}
