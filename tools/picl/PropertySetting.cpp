#include "tools/picl/PropertySetting.h"

Setting judge(const PropertyGetResponse& before, std::string_view value, const PropertyGetResponse& after) {
    const PropertyType type = typeOf(after.guid);
    if (type == PropertyType::Trigger)
        return Setting::Fired;
    if (meanTheSame(type, value, after.value))
        return Setting::Taken;
    return after.value == before.value ? Setting::Refused : Setting::Changed;
}

bool isTaken(Setting setting) { return setting == Setting::Taken || setting == Setting::Fired; }

std::string sentenceFor(Setting setting, std::string_view name, std::string_view value,
                        const PropertyGetResponse& after) {
    const std::string_view outcome =
        setting == Setting::Refused ? "was refused; it is still" : "was not taken as it is; it is now";
    std::string sentence(name);
    for (const std::string_view part :
         {std::string_view(": \""), value, std::string_view("\" "), outcome, std::string_view(" \""),
          std::string_view(after.value), std::string_view("\"")})
        sentence += part;
    return sentence;
}

std::string sentenceForUnsent(PropertyType type, std::string_view name, std::string_view value) {
    return '"' + std::string(name) + "\" is " + std::string(formOf(type)) + "; \"" + std::string(value) +
           "\" is not sent";
}
