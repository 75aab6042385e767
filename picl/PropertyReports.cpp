#include "picl/PropertyReports.h"

#include "picl/JSONPICL.h"
#include "property/Property.h"
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
