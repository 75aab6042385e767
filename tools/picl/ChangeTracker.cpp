#include "tools/picl/ChangeTracker.h"

#include <utility>

void ChangeTracker::start(const PropertyGetResponse& property) {
    m_states.insert_or_assign({property.component, property.group, property.guid},
                              State{.value = property.value, .isThere = true});
}

Change ChangeTracker::take(const PropertyGetResponse& report) {
    const bool isThere = report.status == status::kSuccessful;
    const auto found = m_states.find({report.component, report.group, report.guid});
    if (found == m_states.end()) {
        if (!m_takesNew || !isThere)
            return Change::None;
        start(report);
        return Change::New;
    }
    State& state = found->second;
    const bool wasThere = std::exchange(state.isThere, isThere);
    if (!isThere)
        return wasThere ? Change::Gone : Change::None;
    const bool isOther = std::exchange(state.value, report.value) != report.value;
    if (!wasThere)
        return Change::Back;
    return isOther ? Change::Value : Change::None;
}
