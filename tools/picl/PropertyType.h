#pragma once

#include <string_view>

/// What the value of a property is. Messages do not tell it; the properties of the vocabulary are known.
enum class PropertyType { Unknown, Number, Truth, Text, Trigger };

/// Returns the type of the property with this GUID. One that stands in for a property of another program has
/// that one's type.
[[nodiscard]] PropertyType typeOf(std::string_view guid);

/// Returns the word for @p type; an empty one for one that is not known.
[[nodiscard]] std::string_view nameOf(PropertyType type);

/// Returns whether both texts mean the same value of this type: "true" is "True" and "007" is "7". Where the
/// type is not known, both must read as truths or both as numbers, else each byte counts.
[[nodiscard]] bool meanTheSame(PropertyType type, std::string_view one, std::string_view other);

/// Returns whether @p text reads as a value of this type. Of one that does not an owner makes what nobody
/// meant: every word but "false" is a truth, "-1" the largest number. Where the type is not known all do.
[[nodiscard]] bool isValue(PropertyType type, std::string_view text);

/// Returns how the values of this type read, for a sentence; an empty text where there is nothing to tell.
[[nodiscard]] std::string_view formOf(PropertyType type);
