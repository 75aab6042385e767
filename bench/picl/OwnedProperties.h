#pragma once

#include "property/PropertyVocabulary.h"

#include <cstddef>
#include <cstdint>
#include <string>

/// The properties whose owner is asked for them, the same over both ways of asking.
namespace owned {

inline constexpr std::size_t kAll = 46;
inline constexpr std::size_t kMany = 400; // those that change at once

/// How many an agent brings along: its manager's and its own.
inline constexpr std::size_t kOfTheAgent = 5;

/// Those of an owner of kMany are set by a set of the first one.
inline constexpr std::size_t kFirst = 0;

inline const VocabularyEntry& zone(std::size_t number) {
    return vocabulary::kDebugZones[number % vocabulary::kDebugZones.size()].property;
}

/// Returns a GUID by the form, different for each of the first thousand numbers.
inline std::string guid(std::size_t number) {
    const std::string digits = std::to_string(number);
    std::string guid(zone(number).guid);
    return guid.replace(guid.size() - digits.size(), digits.size(), digits);
}

inline std::string name(std::size_t number) { return std::string(zone(number).name); }

inline std::uint32_t value(std::size_t number) { return static_cast<std::uint32_t>(1000 + number); }

} // namespace owned
