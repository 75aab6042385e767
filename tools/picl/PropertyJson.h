#pragma once

#include "picl/PropertyRecords.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <string_view>

/// Properties as JSON documents, for other programs. Their members stand in the order in which they are
/// added.

/// Returns all that is known of a property.
[[nodiscard]] nlohmann::ordered_json jsonOf(const PropertyGetResponse& property);

/// Adds @p value to @p object as "value"; one that is no UTF-8 is null there, and its bytes stand in
/// "valueInHex".
void addValue(nlohmann::ordered_json& object, std::string_view value);

/// Returns @p json as text, on one line or on several, with the escapes of visibleText(). Bytes of a name
/// that are not UTF-8 are replaced by U+FFFD.
[[nodiscard]] std::string lineOf(const nlohmann::ordered_json& json);
[[nodiscard]] std::string linesOf(const nlohmann::ordered_json& json);
