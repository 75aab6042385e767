#include "tools/picl/WatchPrinter.h"

#include "tools/picl/PropertyJson.h"
#include "tools/picl/PropertyNames.h"
#include "tools/picl/VisibleText.h"

#include <nlohmann/json.hpp>

#include <array>
#include <chrono>
#include <ctime>
#include <iomanip>
#include <ostream>
#include <sstream>
#include <string_view>

namespace {

struct ChangeWords {
    std::string_view json;
    std::string_view text; // between name and value
};

constexpr std::array<ChangeWords, 5> kWords{{
    {"present", " = "},
    {"changed", " = "},
    {"new", " is new = "},
    {"gone", " is gone; it was "},
    {"back", " is back = "},
}};

/// Returns the local time of this moment with milliseconds; @p form and @p behind are of strftime().
std::string localTime(const char* form, const char* behind = "") {
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
    std::tm local{};
    ::localtime_r(&seconds, &local);
    std::ostringstream text;
    text << std::put_time(&local, form) << '.' << std::setfill('0') << std::setw(3) << milliseconds
         << std::put_time(&local, behind);
    return text.str();
}

std::string textOf(Change change, const PropertyGetResponse& property) {
    const std::string time = localTime("%H:%M:%S");
    return (change == Change::None ? std::string(time.size(), ' ') : time) + ' ' +
           visibleText(fullName(property) + std::string(kWords[static_cast<std::size_t>(change)].text) +
                       property.value);
}

std::string jsonTextOf(Change change, const PropertyGetResponse& property) {
    nlohmann::ordered_json object;
    object["time"] = localTime("%Y-%m-%dT%H:%M:%S", "%z");
    object["event"] = kWords[static_cast<std::size_t>(change)].json;
    object.update(jsonOf(property));
    return lineOf(object);
}

} // namespace

bool WatchPrinter::print(Change change, const PropertyGetResponse& property) {
    m_out << (m_json ? jsonTextOf(change, property) : textOf(change, property)) << std::endl;
    return m_out.good();
}
