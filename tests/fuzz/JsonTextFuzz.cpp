#include "picl/JSONPICL.h"
#include "tests/fuzz/Check.h"
#include "json/JSONPrinter.h"
#include "json/JSONReader.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

// What the parser has on its stack of a text that RFC 8259 allows stands for a byte at least: a shorter one
// is never nested too deep.
constexpr std::size_t kNeverTooDeep = 10000;

JSONValue parsed(const std::string& text) {
    const KeltoGuard guard(jsonEngineLock);
    return parseJsonText(text.c_str());
}

std::string printed(const JSONValue& value) {
    std::ostringstream out;
    printValue(out, value);
    return out.str();
}

/// The same tree as it can be printed to be read: its texts escaped, its infinite numbers 0.
JSONValue printable(const JSONValue& value) {
    if (value.type == JSONValueType::StringValue)
        return escapeText(value.textValue);
    if (value.type == JSONValueType::FloatValue && std::isinf(value.floatValue))
        return 0.0;
    if (value.type == JSONValueType::ObjectValue) {
        std::vector<JSONMember> members;
        for (const auto& [key, member] : value.objectValue)
            members.push_back({escapeText(key), printable(member)});
        return JSONObject(std::move(members));
    }
    if (value.type == JSONValueType::ArrayValue) {
        JSONArray items;
        for (const JSONValue& item : value.arrayValue)
            items.append(printable(item));
        return {std::move(items)};
    }
    return value;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    JSONValue value = parsed(text);
    const std::string print = printed(value);
    const JSONValue copy(value);
    value = JSONValue();
    check(printed(copy) == print, "a copy prints as its original, which is gone");

    if (text.size() < kNeverTooDeep) {
        const auto strict = nlohmann::json::parse(text.c_str(), nullptr, false);
        check(strict.is_discarded() || strict.is_null() == (copy.type == JSONValueType::NullValue),
              "what RFC 8259 allows is read");
    }
    if (print.size() < kNeverTooDeep) {
        const std::string wire = printed(printable(copy));
        check(printed(printable(parsed(wire))) == wire, "what is printed is read as it was");
    }
    return 0;
}
