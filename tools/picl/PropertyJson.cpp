#include "tools/picl/PropertyJson.h"

#include "tools/picl/PropertyType.h"
#include "tools/picl/VisibleText.h"

#include <nlohmann/json.hpp>

#include <sstream>

using Json = nlohmann::ordered_json;

namespace {

constexpr int kIndent = 2;

std::string hexadecimal(std::string_view bytes) {
    static constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text += {kDigits[byte >> 4], kDigits[byte & 0xF]};
    }
    return text;
}

} // namespace

Json jsonOf(const PropertyGetResponse& property) {
    Json object;
    object["program"] = property.componentString;
    object["group"] = property.groupString;
    object["name"] = property.nameString;
    const std::string_view type = nameOf(typeOf(property.guid));
    object["type"] = type.empty() ? Json() : Json(type);
    addValue(object, property.value);
    object["component"] = property.component;
    object["groupGuid"] = property.group;
    object["guid"] = property.guid;
    return object;
}

void addValue(Json& object, std::string_view value) {
    const bool isText = isUtf8(value);
    object["value"] = isText ? Json(value) : Json();
    if (!isText)
        object["valueInHex"] = hexadecimal(value);
}

// The escapes of visible text are those of JSON, because the text is valid UTF-8.
std::string lineOf(const Json& json) {
    return visibleText(json.dump(-1, ' ', false, Json::error_handler_t::replace));
}

std::string linesOf(const Json& json) {
    std::istringstream lines(json.dump(kIndent, ' ', false, Json::error_handler_t::replace));
    std::string text;
    for (std::string line; std::getline(lines, line);)
        text += (text.empty() ? "" : "\n") + visibleText(line);
    return text;
}
