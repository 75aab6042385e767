#pragma once

#include "picl/PropertyRecords.h"

#include <memory>
#include <string_view>

class Property;

/// Reports as a program makes them on its own properties. Thread: any.

/// Appends a report on @p property with the value of this moment; @p component stands for the program. A
/// property whose value cannot be told, because it throws, is left out.
void appendReport(PropertyGetResponses& reports, const Property& property, std::string_view status,
                  const Property& component);

/// Returns the report that says that there is no property such as @p request asks for.
[[nodiscard]] PropertyGetResponse notFoundReport(const PropertyGetRequest& request);
