#pragma once

#include "picl/PropertyRecords.h"

#include <functional>
#include <memory>
#include <optional>
#include <string_view>

class Property;
class PropertyTable;

/// Reports of a program on its own properties, and the sets that it receives. Thread-safe.

/// Receives one report after the other. Returns false if it wants no further one.
using ReportSink = std::function<bool(PropertyGetResponse)>;

/// Returns a report on @p property with its present value; @p component stands for the program. Returns
/// nothing if reading the value throws, or if the report fits into no frame, which is logged once for each
/// property.
[[nodiscard]] std::optional<PropertyGetResponse> makeReport(const Property& property, std::string_view status,
                                                            const Property& component);

/// Returns the report that there is no property such as @p request names.
[[nodiscard]] PropertyGetResponse notFoundReport(const PropertyGetRequest& request);

/// Passes the answer to @p request to @p add: a report on the property in @p table, on each property of the
/// group if the GUID is empty, or notFoundReport(). Returns false if @p add did.
bool reportAnswer(const PropertyTable& table, const PropertyGetRequest& request, const Property& component,
                  const ReportSink& add);

/// Passes a report on each property in @p table to @p add. Returns false if @p add did.
bool reportAll(const PropertyTable& table, const Property& component, const ReportSink& add);

/// Sets @p property to what came as @p text. A text that is no value of it leaves it as it is.
void applyText(Property& property, std::string_view text);
