#include "picl/PropertyReports.h"

#include "picl/JSONPICL.h"
#include "picl/ReportFrames.h"
#include "platform/KeltoMutex.h"
#include "platform/Log.h"
#include "property/Property.h"
#include "property/PropertyKey.h"
#include "property/PropertyTable.h"
#include "property/PropertyVocabulary.h"

#include <new>
#include <set>
#include <string>
#include <utility>

namespace {

/// Logs reports that fit into no frame, once for each property.
class OversizeLog {
public:
    void write(const PropertyGetResponse& report) {
        const std::string key = fullKey(report.group, report.guid);
        const KeltoGuard guard(m_lock);
        if (!m_logged.insert(key).second)
            return;
        logLine("\"" + report.nameString + "\" (" + key +
                ") is not reported: its value is too long for a frame");
    }

private:
    KeltoMutex m_lock;
    std::set<std::string> m_logged KELTO_GUARDED_BY(m_lock); // full keys
};

OversizeLog& oversizeLog() {
    static OversizeLog& log = *new OversizeLog; // a detached thread may use it until the process ends
    return log;
}

bool reportEach(const PropertyQueue& properties, const Property& component, const ReportSink& add) {
    for (const std::shared_ptr<Property>& property : properties) {
        std::optional<PropertyGetResponse> report = makeReport(*property, status::kSuccessful, component);
        if (report && !add(std::move(*report)))
            return false;
    }
    return true;
}

} // namespace

std::optional<PropertyGetResponse> makeReport(const Property& property, std::string_view status,
                                              const Property& component) {
    PropertyGetResponse report{.group = property.getGroupGuid(),
                               .groupString = property.getGroupName(),
                               .guid = property.getGuid(),
                               .nameString = property.getName(),
                               .value = {},
                               .status = std::string(status),
                               .component = component.getGuid(),
                               .componentString = component.getName()};
    try {
        report.value = property.getStringValue();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        return std::nullopt; // the other properties are reported all the same
    }
    if (ReportFrames::textSize(report) - report.value.size() + escapedSize(report.value) >
        ReportFrames::kRoom) {
        oversizeLog().write(report);
        return std::nullopt;
    }
    escapeInPlace(report.value);
    return report;
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

bool reportAnswer(const PropertyTable& table, const PropertyGetRequest& request, const Property& component,
                  const ReportSink& add) {
    PropertyQueue found;
    if (request.guid.empty())
        table.getGroupProperties(request.group, found);
    else if (std::shared_ptr<Property> property = table.findProperty(request.guid, request.group))
        found.push_back(std::move(property));
    else if (escapedSize(request.group) + escapedSize(request.guid) + escapedSize(request.component) <=
             ReportFrames::kRoom) // else no frame has room for it
        return add(notFoundReport(request));
    return reportEach(found, component, add);
}

bool reportAll(const PropertyTable& table, const Property& component, const ReportSink& add) {
    PropertyQueue properties;
    table.getAllProperties(properties);
    return reportEach(properties, component, add);
}

// Neither a number that is none nor a listener that fails ends the thread that reads: the property keeps what
// it has, and the rest of the message is dealt with.
void applyText(Property& property, std::string_view text) {
    try {
        property.setFromString(text);
    } catch (...) { // NOLINT(bugprone-empty-catch): there is nobody to tell
    }
}
