#pragma once

#include "picl/PropertyRecords.h"

#include <map>
#include <string>
#include <tuple>

/// What a report says that was not known.
enum class Change {
    None,
    Value, ///< Another value.
    New,   ///< A property that was not there.
    Gone,
    Back,
};

/// Tells from the reports of a server what has changed: reports repeat values, and tell of other properties.
class ChangeTracker {
public:
    /// @p takesNew tells whether properties count that start() was not told of.
    explicit ChangeTracker(bool takesNew) : m_takesNew(takesNew) {}

    /// Takes a property as it stands now.
    void start(const PropertyGetResponse& property);

    /// Takes the next report and returns what it changes.
    [[nodiscard]] Change take(const PropertyGetResponse& report);

private:
    struct State {
        std::string value;
        bool isThere = true;
    };
    using Key = std::tuple<std::string, std::string, std::string>;

    const bool m_takesNew;
    std::map<Key, State> m_states;
};
