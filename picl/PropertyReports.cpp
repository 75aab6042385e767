#include "picl/PropertyReports.h"

#include "picl/JSONPICL.h"
#include "property/Property.h"
#include "property/PropertyTable.h"
#include "property/PropertyVocabulary.h"

#include <string>
#include <utility>

void appendReport(PropertyGetResponses& reports, const Property& property, std::string_view status,
                  const Property& component) {
    std::string value;
    try {
        value = escapeText(property.getStringValue());
    } catch (...) {
        return; // the other properties are reported all the same
    }
    reports.push_back({.group = property.getGroupGuid(),
                       .groupString = property.getGroupName(),
                       .guid = property.getGuid(),
                       .nameString = property.getName(),
                       .value = std::move(value),
                       .status = std::string(status),
                       .component = component.getGuid(),
                       .componentString = component.getName()});
}

// What came from the wire goes back through the escapes: a key is any text there, and must not end ours.
PropertyGetResponse notFoundReport(const PropertyGetRequest& request) {
    namespace misses = vocabulary::misses;
    return {.group = escapeText(request.group),
            .groupString = std::string(misses::kGroup),
            .guid = escapeText(request.guid),
            .nameString = std::string(misses::kProperty),
            .value = std::string(misses::kValue),
            .status = std::string(status::kNotFound),
            .component = escapeText(request.component),
            .componentString = std::string(misses::kGroup)};
}

void appendAnswer(PropertyGetResponses& reports, const PropertyTable& table,
                  const PropertyGetRequest& request, const Property& component) {
    PropertyQueue found;
    if (request.guid.empty())
        table.getGroupProperties(request.group, found);
    else if (std::shared_ptr<Property> property = table.findProperty(request.guid, request.group))
        found.push_back(std::move(property));
    else
        reports.push_back(notFoundReport(request));
    for (const std::shared_ptr<Property>& property : found)
        appendReport(reports, *property, status::kSuccessful, component);
}

void appendAll(PropertyGetResponses& reports, const PropertyTable& table, const Property& component) {
    PropertyQueue properties;
    table.getAllProperties(properties);
    for (const std::shared_ptr<Property>& property : properties)
        appendReport(reports, *property, status::kSuccessful, component);
}

// Neither a number that is none nor a listener that fails ends the thread that reads: the property keeps what
// it has, and the rest of the message is dealt with.
void applyText(Property& property, std::string_view text) {
    try {
        property.setFromString(text);
    } catch (...) { // NOLINT(bugprone-empty-catch): there is nobody to tell
    }
}
