#include "tools/picl/PropertyNames.h"

#include "property/PropertyKey.h"
#include "tools/picl/VisibleText.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

namespace {

constexpr std::size_t kMostSuggestions = 3;

/// The spellings of a property, that which people like best first.
std::array<std::string, 6> spellingsOf(const PropertyGetResponse& property) {
    const std::string key = fullKey(property.group, property.guid);
    return {property.nameString,
            property.groupString + '/' + property.nameString,
            fullName(property),
            property.guid,
            key,
            fullKey(property.component, key)};
}

/// Returns how many characters must be put in, left out or replaced to make one of the other (Levenshtein).
std::size_t distance(std::string_view one, std::string_view other) {
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < one.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < other.size(); ++j) {
            const std::size_t replaced = diagonal + (one[i] == other[j] ? 0U : 1U);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

/// Returns how unlike two names are; nothing where they have nothing in common that a person would see.
std::optional<std::size_t> unlikeness(std::string_view candidate, std::string_view name) {
    const std::size_t edits = distance(candidate, name);
    if (edits <= std::max<std::size_t>(2, name.size() / 3))
        return edits;
    if (name.size() > 2 && candidate.find(name) != std::string_view::npos)
        return candidate.size(); // behind those that are mistyped
    return {};
}

} // namespace

std::optional<PropertyGetRequest> requestByGuids(std::string_view name) {
    constexpr std::string_view kForm =
        "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx:xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx:"
        "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    constexpr std::size_t size = 36;
    const auto fits = [](char c, char form) {
        return form == 'x' ? (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') : c == form;
    };
    if (!std::ranges::equal(name, kForm, fits))
        return {};
    return PropertyGetRequest{.component = std::string(name.substr(0, size)),
                              .group = std::string(name.substr(size + 1, size)),
                              .guid = std::string(name.substr(2 * (size + 1)))};
}

std::string fullName(const PropertyGetResponse& property) {
    return property.componentString + '/' + property.groupString + '/' + property.nameString;
}

PropertyNames::PropertyNames(const Properties& properties) : m_properties(properties) {
    for (const PropertyGetResponse& property : m_properties) {
        for (std::string& spelling : spellingsOf(property)) {
            m_withoutCase.emplace(withoutCase(spelling), &property);
            m_exact.emplace(std::move(spelling), &property);
        }
    }
}

std::vector<const PropertyGetResponse*> PropertyNames::find(std::string_view name) const {
    std::vector<const PropertyGetResponse*> found = lookUp(m_exact, std::string(name));
    return found.empty() ? lookUp(m_withoutCase, withoutCase(name)) : found;
}

std::vector<const PropertyGetResponse*> PropertyNames::lookUp(const Index& index, const std::string& name) {
    std::vector<const PropertyGetResponse*> found;
    const auto [begin, end] = index.equal_range(name);
    for (auto entry = begin; entry != end; ++entry)
        found.push_back(entry->second);
    std::ranges::sort(found); // in the order of the properties, which lie one behind the other
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

std::vector<std::string> PropertyNames::uniqueSpellings(const PropertyGetResponse& property) const {
    std::vector<std::string> unique;
    std::array<std::string, 6> spellings = spellingsOf(property);
    for (std::string& spelling : spellings) {
        if (!spelling.empty() && find(spelling).size() == 1)
            unique.push_back(std::move(spelling));
    }
    if (unique.empty()) // only GUIDs with colons in them can be so alike
        unique.push_back(std::move(spellings.back()));
    return unique;
}

std::vector<std::string> PropertyNames::closest(std::string_view name) const {
    // Compared in the shape that was typed, told in the one that is unique.
    const auto slashes = std::min<std::ptrdiff_t>(std::ranges::count(name, '/'), 2);
    std::unordered_multimap<std::string, const PropertyGetResponse*> byShape;
    std::vector<std::string> candidates;
    for (const PropertyGetResponse& property : m_properties) {
        candidates.push_back(spellingsOf(property)[static_cast<std::size_t>(slashes)]);
        byShape.emplace(candidates.back(), &property);
    }
    std::vector<std::string> spellings;
    for (const std::string& candidate : closestOf(std::move(candidates), name)) {
        const auto [begin, end] = byShape.equal_range(candidate);
        for (auto entry = begin; entry != end; ++entry)
            spellings.push_back(uniqueSpellings(*entry->second).front());
    }
    spellings.resize(std::min(spellings.size(), kMostSuggestions));
    return spellings;
}

std::vector<std::string> closestOf(std::vector<std::string> candidates, std::string_view name) {
    std::ranges::sort(candidates);
    candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
    std::vector<std::pair<std::size_t, std::string>> ranked;
    for (std::string& candidate : candidates) {
        if (const auto rank = unlikeness(withoutCase(candidate), withoutCase(name)))
            ranked.emplace_back(*rank, std::move(candidate));
    }
    std::ranges::sort(ranked);
    std::vector<std::string> best;
    for (std::size_t index = 0; index < std::min(ranked.size(), kMostSuggestions); ++index)
        best.push_back(std::move(ranked[index].second));
    return best;
}
