#include "tools/picl/PropertyDocument.h"

#include "tools/picl/PropertyJson.h"
#include "tools/picl/PropertyNames.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <set>
#include <tuple>
#include <utility>

using Json = nlohmann::ordered_json;

namespace {

constexpr std::string_view kFormat = "picl properties";
constexpr int kVersion = 1;

struct Fault {
    std::string sentence;
};

[[noreturn]] void fail(const std::string& place, const std::string& what) {
    throw Fault{(place.empty() ? "the document" : place) + ' ' + what};
}

std::string member(const std::string& place, std::string_view key) {
    return place.empty() ? std::string(key) : place + '.' + std::string(key);
}

std::string element(const std::string& place, std::size_t index) {
    return place + '[' + std::to_string(index) + ']';
}

/// Checks that @p json is an object with all of @p keys, and none but these and @p others.
void checkObject(const Json& json, const std::string& place, std::initializer_list<std::string_view> keys,
                 std::initializer_list<std::string_view> others = {}) {
    if (!json.is_object())
        fail(place, "must be an object");
    for (const std::string_view key : keys) {
        if (!json.contains(key))
            fail(member(place, key), "is missing");
    }
    for (const auto& [key, value] : json.items()) {
        if (std::ranges::find(keys, key) == keys.end() && std::ranges::find(others, key) == others.end())
            fail(member(place, key), "is not known");
    }
}

std::string text(const Json& object, const std::string& place, std::string_view key) {
    const Json& json = object[std::string(key)];
    if (!json.is_string())
        fail(member(place, key), "must be a text");
    std::string content = json.get<std::string>();
    if (content.find('\0') != std::string::npos)
        fail(member(place, key), "must not hold a zero character");
    return content;
}

std::string bytes(const std::string& digits, const std::string& place) {
    std::string content;
    for (std::size_t at = 0; at < digits.size(); at += 2) {
        unsigned char byte = 0;
        const char* const begin = digits.data() + at;
        const char* const end = begin + std::min<std::size_t>(2, digits.size() - at);
        const auto [behind, failure] = std::from_chars(begin, end, byte, 16);
        if (failure != std::errc{} || behind != begin + 2 || byte == 0)
            fail(place, "must be bytes other than 00, two hexadecimal digits each");
        content += static_cast<char>(byte);
    }
    return content;
}

std::string value(const Json& property, const std::string& place) {
    const bool hasHex = property.contains("valueInHex");
    if (hasHex != property["value"].is_null())
        fail(member(place, "value"), hasHex ? "must be null beside valueInHex" : "must be a text");
    return hasHex ? bytes(text(property, place, "valueInHex"), member(place, "valueInHex"))
                  : text(property, place, "value");
}

void readProperty(const Json& json, const std::string& place, const PropertyGetResponse& group,
                  Properties& properties) {
    checkObject(json, place, {"name", "guid", "value"}, {"valueInHex"});
    PropertyGetResponse property = group;
    property.nameString = text(json, place, "name");
    property.guid = text(json, place, "guid");
    property.value = value(json, place);
    if (std::ranges::any_of(properties, [&](const auto& other) { return isOn(other, requestFor(property)); }))
        fail(place, "tells of the property " + fullName(property) + " a second time");
    properties.push_back(std::move(property));
}

const Json& list(const Json& object, const std::string& place, std::string_view key) {
    const Json& json = object[std::string(key)];
    if (!json.is_array())
        fail(member(place, key), "must be an array");
    return json;
}

Properties readProperties(const Json& json) {
    checkObject(json, "", {"format", "version", "program", "groups"});
    if (json["format"] != kFormat)
        fail("format", "must be \"" + std::string(kFormat) + '"');
    if (json["version"] != kVersion)
        fail("version", "must be " + std::to_string(kVersion) + ", the one that this program knows");
    checkObject(json["program"], "program", {"name", "guid"});
    PropertyGetResponse record;
    record.componentString = text(json["program"], "program", "name");
    record.component = text(json["program"], "program", "guid");

    Properties properties;
    const Json& groups = list(json, "", "groups");
    for (std::size_t index = 0; index < groups.size(); ++index) {
        const std::string place = element("groups", index);
        checkObject(groups[index], place, {"name", "guid", "properties"});
        record.groupString = text(groups[index], place, "name");
        record.group = text(groups[index], place, "guid");
        const Json& items = list(groups[index], place, "properties");
        for (std::size_t item = 0; item < items.size(); ++item)
            readProperty(items[item], element(member(place, "properties"), item), record, properties);
    }
    if (properties.empty())
        fail("groups", "must hold a property");
    return properties;
}

/// Fails where an object has one key twice, of which a reader would take one.
class KeyCheck {
public:
    bool operator()(int /*depth*/, Json::parse_event_t event, const Json& parsed) {
        if (event == Json::parse_event_t::object_start)
            m_objects.emplace_back();
        else if (event == Json::parse_event_t::object_end)
            m_objects.pop_back();
        else if (event == Json::parse_event_t::key &&
                 !m_objects.back().insert(parsed.get<std::string>()).second)
            fail("the key " + parsed.dump(), "stands twice in one object");
        return true;
    }

private:
    std::vector<std::set<std::string>> m_objects;
};

/// Returns what the parser says without the number of its kind.
std::string withoutNumber(const std::string& what) {
    const std::size_t end = what.find("] ");
    return end == std::string::npos ? what : what.substr(end + 2);
}

Json groupJson(const PropertyGetResponse& property) {
    Json group;
    group["name"] = property.groupString;
    group["guid"] = property.group;
    group["properties"] = Json::array();
    return group;
}

Json propertyJson(const PropertyGetResponse& property) {
    Json json;
    json["name"] = property.nameString;
    json["guid"] = property.guid;
    addValue(json, property.value);
    return json;
}

} // namespace

std::string printDocument(Properties properties) {
    std::ranges::sort(properties, {}, [](const PropertyGetResponse& property) {
        return std::tie(property.groupString, property.group, property.nameString, property.guid);
    });
    Json document;
    document["format"] = kFormat;
    document["version"] = kVersion;
    document["program"]["name"] = properties.front().componentString;
    document["program"]["guid"] = properties.front().component;
    Json& groups = document["groups"] = Json::array();
    for (const PropertyGetResponse& property : properties) {
        if (groups.empty() || groups.back()["guid"] != property.group)
            groups.push_back(groupJson(property));
        groups.back()["properties"].push_back(propertyJson(property));
    }
    return linesOf(document) + '\n';
}

std::optional<Properties> readDocument(std::string_view text, std::string& why) {
    try {
        KeyCheck check;
        return readProperties(Json::parse(text, std::ref(check)));
    } catch (const Fault& fault) {
        why = fault.sentence;
    } catch (const nlohmann::json::exception& fault) {
        why = withoutNumber(fault.what());
    }
    return {};
}
