#pragma once

#include "picl/PropertyRecords.h"
#include "tools/picl/ChangeTracker.h"

#include <iosfwd>

/// Prints changes with the local time of their printing, a line each, which is out at once.
class WatchPrinter {
public:
    /// Prints to @p out, which outlives this, as JSON objects if @p json.
    WatchPrinter(std::ostream& out, bool json) : m_out(out), m_json(json) {}

    /// Prints what @p change says of @p property; None stands for its present value. Returns false where the
    /// line cannot be written.
    [[nodiscard]] bool print(Change change, const PropertyGetResponse& property);

private:
    std::ostream& m_out;
    const bool m_json;
};
