#include "property/PropertyVocabulary.h"

#include <utility>

namespace vocabulary {
namespace {

template <std::size_t... kIndex>
constexpr std::array<std::atomic<bool>, sizeof...(kIndex)> defaults(std::index_sequence<kIndex...>) {
    return {kDebugZones[kIndex].byDefault...};
}

constinit auto theFlags = defaults(std::make_index_sequence<kDebugZones.size()>());

} // namespace

std::atomic<bool>& debugZoneFlag(std::size_t index) { return theFlags[index]; }

} // namespace vocabulary
