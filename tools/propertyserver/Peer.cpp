#include "tools/propertyserver/Peer.h"

#include "property/PropertyKey.h"

#include <utility>

namespace {

constexpr char kBetween = '\n'; // no part of a GUID

std::string beginOf(std::string_view component, std::size_t size) {
    std::string id;
    id.reserve(size);
    id += component;
    id += kBetween;
    return id;
}

} // namespace

std::string idOf(std::string_view component, std::string_view groupGuid, std::string_view guid) {
    std::string id = beginOf(component, component.size() + groupGuid.size() + guid.size() + 2);
    appendFullKey(id, groupGuid, guid);
    return id;
}

std::string idOf(std::string_view component, std::string_view groupGuid) {
    return beginOf(component, component.size() + groupGuid.size() + 1).append(groupGuid);
}

Report::Report(PropertyGetResponse arrived)
    : id(idOf(arrived.component, arrived.group, arrived.guid)), record(std::move(arrived)) {
    for (std::string* text : {&record.component, &record.componentString, &record.group, &record.groupString,
                              &record.guid, &record.nameString, &record.status, &record.value})
        escapeInPlace(*text);
}

std::string_view Report::component() const { return std::string_view(id).substr(0, id.find(kBetween)); }

std::string_view Report::key() const { return std::string_view(id).substr(id.find(kBetween) + 1); }

std::size_t Report::bytes() const {
    return record.component.size() + record.componentString.size() + record.group.size() +
           record.groupString.size() + record.guid.size() + record.nameString.size() + record.status.size() +
           record.value.size();
}
