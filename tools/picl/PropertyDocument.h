#pragma once

#include "tools/picl/PropertySession.h"

#include <optional>
#include <string>
#include <string_view>

/// The properties of one program as a JSON document, which people keep, compare and edit:
///
///     {"format": "picl properties", "version": 1,
///      "program": {"name": ..., "guid": ...},
///      "groups": [{"name": ..., "guid": ..., "properties": [{"name": ..., "guid": ..., "value": ...}]}]}
///
/// Values are texts, as they travel; one that is no UTF-8 is null, and its bytes stand in "valueInHex".
/// GUIDs identify, names are for people.

/// Returns the document of @p properties, which belong to one program. Groups and their properties stand in
/// the order of their names. Requires: there is one; all GUIDs are UTF-8.
[[nodiscard]] std::string printDocument(Properties properties);

/// Reads a document. Returns nothing where @p text is none, and puts a sentence with the place of the fault
/// into @p why: nothing is guessed, left out or taken twice.
[[nodiscard]] std::optional<Properties> readDocument(std::string_view text, std::string& why);
