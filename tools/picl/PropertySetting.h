#pragma once

#include "picl/PropertyRecords.h"
#include "tools/picl/PropertyType.h"

#include <string>
#include <string_view>

/// What became of a property that was set.
enum class Setting {
    Taken,   ///< It has the value.
    Fired,   ///< It is a trigger; what it has is the outcome.
    Refused, ///< It has the value that it had before.
    Changed, ///< It has another one.
};

/// Returns what became of a property that was set to @p value, from the reports before and after.
[[nodiscard]] Setting judge(const PropertyGetResponse& before, std::string_view value,
                            const PropertyGetResponse& after);

/// Returns whether its owner did what was asked for.
[[nodiscard]] bool isTaken(Setting setting);

/// Returns a sentence about the property called @p name, to which @p value is not sent: it is none.
[[nodiscard]] std::string sentenceForUnsent(PropertyType type, std::string_view name, std::string_view value);

/// Returns a sentence about the property called @p name that did not take @p value.
[[nodiscard]] std::string sentenceFor(Setting setting, std::string_view name, std::string_view value,
                                      const PropertyGetResponse& after);
