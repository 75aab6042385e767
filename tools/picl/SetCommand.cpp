#include "tools/picl/SetCommand.h"

#include "property/ValueText.h"
#include "tools/picl/CommandSupport.h"
#include "tools/picl/PropertyJson.h"
#include "tools/picl/PropertySetting.h"
#include "tools/picl/PropertyType.h"
#include "tools/picl/VisibleText.h"

#include <nlohmann/json.hpp>

#include <iostream>

namespace {

struct Arguments {
    std::string name;
    std::string value;
};

/// Returns whether a value of this kind may be sent; complains if not.
bool checkValue(PropertyType type, const Arguments& arguments) {
    if (!isValue(type, arguments.value)) {
        complain(sentenceForUnsent(type, arguments.name, arguments.value));
        return false;
    }
    if (type == PropertyType::Trigger && !parseBoolean(arguments.value)) {
        complain(inQuotes(arguments.name) + " is a trigger: true fires it, and false does nothing");
        return false;
    }
    return true;
}

void printFired(const Arguments& arguments, const PropertyGetResponse& after) {
    std::cout << visibleText(arguments.name) << ": fired; "
              << (parseBoolean(after.value) ? "it succeeded" : "it tells no success") << '\n';
}

int tell(const CommonOptions& options, const Arguments& arguments, const PropertyGetResponse& before,
         const PropertyGetResponse& after) {
    const Setting setting = judge(before, arguments.value, after);
    if (!isTaken(setting)) {
        complain(sentenceFor(setting, arguments.name, arguments.value, after));
        return kFailed;
    }
    if (options.json)
        std::cout << linesOf(jsonOf(after)) << '\n';
    else if (setting == Setting::Fired)
        printFired(arguments, after);
    else
        std::cout << visibleText(arguments.name + " = " + after.value) << '\n';
    return kDone;
}

int set(const CommonOptions& options, const Arguments& arguments) {
    const std::optional<Snapshot> snapshot = takeSnapshot(options, {arguments.name});
    if (!snapshot)
        return kFailed;
    const PropertyGetResponse* before = findProperty(PropertyNames(snapshot->properties), arguments.name);
    if (before == nullptr || !checkValue(typeOf(before->guid), arguments))
        return kFailed;
    const auto answer = snapshot->session->set(requestFor(*before), arguments.value);
    if (!answer) {
        complain(snapshot->session->why());
        return kFailed;
    }
    const PropertyGetResponse* after = checkAnswer(answer, arguments.name);
    return after == nullptr ? kFailed : tell(options, arguments, *before, *after);
}

} // namespace

void addSetCommand(CommandLine& line) {
    const auto arguments = std::make_shared<Arguments>();
    CLI::App& command =
        line.addCommand("set", "Set a property, and see what becomes of it",
                        [arguments](const CommonOptions& options) { return set(options, *arguments); });
    command.add_option("NAME", arguments->name, "The property, see below")
        ->type_name("")
        ->required()
        ->check(notEmptyCheck(kSeeList));
    command.add_option("VALUE", arguments->value, "Its value; behind -- one that begins with -")
        ->type_name("")
        ->required();
    line.addJsonOption(command, "Print the property as a JSON object");
    command.footer("Prints the value that the property has then. A trigger is fired by true.\n" +
                   std::string(kNamesHelp));
}
