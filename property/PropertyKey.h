#pragma once

#include <string>
#include <string_view>

class Property;

/// The keys of properties: in a table, in the property file and on the wire. Thread: any.

constexpr char kKeySeparator = ':';

/// What identifies a property within a program.
struct PropertyKey {
    std::string group; ///< The GUID of its group.
    std::string guid;

    friend bool operator==(const PropertyKey&, const PropertyKey&) = default;
};

/// Appends the key of one property to @p key, a string of whatever allocator: group GUID, ":", GUID.
template <typename String>
void appendFullKey(String& key, std::string_view groupGuid, std::string_view guid) {
    key.reserve(key.size() + groupGuid.size() + 1 + guid.size());
    key += groupGuid;
    key += kKeySeparator;
    key += guid;
}

/// Returns the key of one property.
[[nodiscard]] std::string fullKey(std::string_view groupGuid, std::string_view guid);
[[nodiscard]] std::string fullKey(const Property& property);

/// Returns the key that all properties of a group share: group GUID, ":".
[[nodiscard]] std::string groupKey(std::string_view groupGuid);

struct SplitKey {
    std::string_view groupGuid;
    std::string_view guid;
};

/// Returns what stands before and behind the first ":" of @p key, as parts of it; where there is none both
/// are the whole.
[[nodiscard]] SplitKey splitKey(std::string_view key);
