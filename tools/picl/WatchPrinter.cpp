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

struct LocalTime {
    std::tm calendar{};
    int milliseconds = 0;
};

LocalTime localTime() {
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto sinceEpoch = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch());
    LocalTime time{.calendar = {}, .milliseconds = static_cast<int>(sinceEpoch.count() % 1000)};
    ::localtime_r(&seconds, &time.calendar);
    return time;
}

std::string timeOfDay(const LocalTime& time) {
    std::ostringstream text;
    text << std::put_time(&time.calendar, "%H:%M:%S.") << std::setfill('0') << std::setw(3)
         << time.milliseconds;
    return text.str();
}

/// Returns @p time as ISO 8601 has it, with the distance from UTC.
std::string timestamp(const LocalTime& time) {
    std::ostringstream text;
    text << std::put_time(&time.calendar, "%Y-%m-%dT") << timeOfDay(time)
         << std::put_time(&time.calendar, "%z");
    return text.str().insert(text.str().size() - 2, ":");
}

std::string textOf(Change change, const PropertyGetResponse& property) {
    const std::string time = timeOfDay(localTime());
    return (change == Change::None ? std::string(time.size(), ' ') : time) + ' ' +
           visibleText(fullName(property) + std::string(kWords[static_cast<std::size_t>(change)].text) +
                       property.value);
}

std::string jsonTextOf(Change change, const PropertyGetResponse& property) {
    nlohmann::ordered_json object;
    object["time"] = timestamp(localTime());
    object["event"] = kWords[static_cast<std::size_t>(change)].json;
    object.update(jsonOf(property));
    return lineOf(object);
}

} // namespace

bool WatchPrinter::print(Change change, const PropertyGetResponse& property) {
    m_out << (m_json ? jsonTextOf(change, property) : textOf(change, property)) << std::endl;
    return m_out.good();
}
