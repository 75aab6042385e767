#pragma once

#include "tools/picl/PropertySession.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// How people name properties: by name, "group/name" or "program/group/name", and for what has no name or
/// shares it by GUID, "group:guid" or "component:group:guid" as they travel.
///
/// A name is compared as a whole, so blanks, slashes and colons in it are as good as any other character.
class PropertyNames {
public:
    /// Refers to @p properties, which outlive this.
    explicit PropertyNames(const Properties& properties);

    /// Returns the properties that @p name means: one; none; or several where it is ambiguous. What it means
    /// letter by letter goes before what it means without regard to case.
    [[nodiscard]] std::vector<const PropertyGetResponse*> find(std::string_view name) const;

    /// Returns the spellings by which find() finds @p property alone, that which people like best first; that
    /// of all its GUIDs where there is none.
    [[nodiscard]] std::vector<std::string> uniqueSpellings(const PropertyGetResponse& property) const;

    /// Returns the spellings of the properties that are most like @p name, the best first, a few at most.
    [[nodiscard]] std::vector<std::string> closest(std::string_view name) const;

private:
    using Index = std::unordered_multimap<std::string, const PropertyGetResponse*>;

    [[nodiscard]] static std::vector<const PropertyGetResponse*> lookUp(const Index& index,
                                                                        const std::string& name);

    const Properties& m_properties;
    Index m_exact;
    Index m_withoutCase;
};

/// Returns what asks for the property that @p name names by all its GUIDs; nothing where that is no such
/// name.
[[nodiscard]] std::optional<PropertyGetRequest> requestByGuids(std::string_view name);

/// Returns "program/group/name" of @p property.
[[nodiscard]] std::string fullName(const PropertyGetResponse& property);

/// Returns those of @p candidates that are most like @p name, the best first, a few at most.
[[nodiscard]] std::vector<std::string> closestOf(std::vector<std::string> candidates, std::string_view name);
