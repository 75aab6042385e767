#pragma once

#include "picl/PropertyRecords.h"

#include <memory>
#include <string_view>

class Property;
class PropertyTable;

/// What a program says of its own properties, and what it does with them where it is asked to. Thread: any.

/// Appends a report on @p property with the value of this moment; @p component stands for the program. A
/// property whose value cannot be told, because it throws, is left out.
void appendReport(PropertyGetResponses& reports, const Property& property, std::string_view status,
                  const Property& component);

/// Returns the report that says that there is no property such as @p request asks for.
[[nodiscard]] PropertyGetResponse notFoundReport(const PropertyGetRequest& request);

/// Appends the answer to @p request: a report on the property in @p table, on all of a group where no GUID is
/// told, or that there is none.
void appendAnswer(PropertyGetResponses& reports, const PropertyTable& table,
                  const PropertyGetRequest& request, const Property& component);

/// Appends a report on every property in @p table.
void appendAll(PropertyGetResponses& reports, const PropertyTable& table, const Property& component);

/// Sets @p property to what came as @p text. A text that is no value of it leaves it as it is.
void applyText(Property& property, std::string_view text);
