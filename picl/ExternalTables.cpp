#include "picl/ExternalTables.h"

#include "property/PropertyKey.h"
#include "property/PropertyTable.h"

#include <utility>

std::shared_ptr<Property> ExternalTables::find(std::string_view component, std::string_view group,
                                               std::string_view guid) const {
    const std::shared_ptr<PropertyTable> table = tableOf(component);
    return table ? table->findProperty(guid, group) : nullptr;
}

bool ExternalTables::add(std::string_view component, std::shared_ptr<Property> mirror) {
    std::shared_ptr<PropertyTable> table;
    {
        const KeltoGuard guard(m_lock);
        std::shared_ptr<PropertyTable>& place = m_tables[std::string(component)];
        if (!place)
            place = std::make_shared<PropertyTable>();
        table = place;
    }
    return table->addProperty(std::move(mirror));
}

void ExternalTables::remove(std::string_view component, std::string_view group, std::string_view guid) {
    if (const std::shared_ptr<PropertyTable> table = tableOf(component))
        table->removeByKey(fullKey(group, guid));
}

std::shared_ptr<PropertyTable> ExternalTables::tableOf(std::string_view component) const {
    const KeltoGuard guard(m_lock);
    const auto found = m_tables.find(component);
    return found == m_tables.end() ? nullptr : found->second;
}
