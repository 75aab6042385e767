#include "tools/picl/GetCommand.h"

#include "tools/picl/CommandSupport.h"
#include "tools/picl/PropertyJson.h"
#include "tools/picl/Terminal.h"
#include "tools/picl/VisibleText.h"

#include <nlohmann/json.hpp>

#include <iostream>

namespace {

/// A property as it was asked for and as it was found.
struct Named {
    std::string name;
    PropertyGetResponse property;
};

/// Returns what the owners tell of @p names. Where that is less than all, it has complained of the others.
std::vector<Named> ask(Snapshot& snapshot, const std::vector<std::string>& names) {
    const PropertyNames known(snapshot.properties);
    std::vector<std::string> found;
    std::vector<PropertyGetRequest> requests;
    for (const std::string& name : names) {
        if (const PropertyGetResponse* property = findProperty(known, name)) {
            found.push_back(name);
            requests.push_back(requestFor(*property));
        }
    }
    const auto answers = snapshot.session->ask(requests);
    if (!answers) {
        complain(snapshot.session->why());
        return {};
    }
    std::vector<Named> told;
    for (std::size_t index = 0; index < found.size(); ++index) {
        if (const PropertyGetResponse* property = checkAnswer((*answers)[index], found[index]))
            told.push_back({found[index], *property});
    }
    return told;
}

void printJson(const std::vector<Named>& told, bool isOne) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Named& named : told)
        list.push_back(jsonOf(named.property));
    if (!isOne)
        std::cout << linesOf(list) << '\n';
    else if (!told.empty())
        std::cout << linesOf(list.front()) << '\n';
}

void printText(const std::vector<Named>& told, bool isOne) {
    for (const Named& named : told) {
        const std::string& value = named.property.value;
        if (!isOne)
            std::cout << visibleText(named.name + " = " + value) << '\n';
        else // to the byte for who reads it, harmless for who looks at it
            std::cout << (outputIsTerminal() ? visibleText(value) : value) << '\n';
    }
}

int get(const CommonOptions& options, const std::vector<std::string>& names) {
    std::optional<Snapshot> snapshot = takeSnapshot(options, names);
    if (!snapshot)
        return kFailed;
    const std::vector<Named> told = ask(*snapshot, names);
    options.json ? printJson(told, names.size() == 1) : printText(told, names.size() == 1);
    return told.size() == names.size() ? kDone : kFailed;
}

} // namespace

void addGetCommand(CommandLine& line) {
    const auto names = std::make_shared<std::vector<std::string>>();
    CLI::App& command =
        line.addCommand("get", "Print the value of a property, or of several",
                        [names](const CommonOptions& options) { return get(options, *names); });
    addNames(command, *names)->required();
    line.addJsonOption(command, "Print a JSON object, for several properties an array of them");
    command.footer("Prints the value alone for one property, \"name = value\" for several.\n" +
                   std::string(kNamesHelp));
}
