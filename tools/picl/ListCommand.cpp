#include "tools/picl/ListCommand.h"

#include "property/PropertyKey.h"
#include "tools/picl/CommandSupport.h"
#include "tools/picl/PropertyJson.h"
#include "tools/picl/PropertyType.h"
#include "tools/picl/Table.h"
#include "tools/picl/Terminal.h"
#include "tools/picl/VisibleText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fnmatch.h>
#include <iostream>
#include <tuple>

namespace {

struct Arguments {
    std::string pattern;
    std::string program;
    std::string group;
    bool guids = false;

    [[nodiscard]] bool filter() const { return !pattern.empty() || !program.empty() || !group.empty(); }
};

std::string wholeKey(const PropertyGetResponse& property) {
    return fullKey(property.component, fullKey(property.group, property.guid));
}

/// Compares without regard to case; a pattern without wildcards may stand anywhere in the text.
bool matches(const std::string& pattern, const std::string& text) {
    const std::string folded = withoutCase(pattern);
    if (folded.find_first_of("*?[") == std::string::npos)
        return withoutCase(text).find(folded) != std::string::npos;
    return ::fnmatch(folded.c_str(), withoutCase(text).c_str(), FNM_NOESCAPE) == 0;
}

bool matchesPattern(const PropertyGetResponse& property, const std::string& pattern) {
    return matches(pattern, property.nameString) || matches(pattern, fullName(property)) ||
           matches(pattern, property.groupString + '/' + property.nameString) ||
           matches(pattern, wholeKey(property));
}

bool isGroup(const PropertyGetResponse& property, const std::string& group) {
    return withoutCase(property.groupString) == withoutCase(group) ||
           withoutCase(property.group) == withoutCase(group);
}

/// Leaves what is asked for. Returns whether there is such a program.
bool select(Properties& properties, const Arguments& arguments) {
    if (!arguments.program.empty()) {
        const std::optional<std::string> component = findProgram(properties, arguments.program);
        if (!component)
            return false;
        std::erase_if(properties, [&](const auto& property) { return property.component != *component; });
    }
    if (!arguments.group.empty())
        std::erase_if(properties, [&](const auto& property) { return !isGroup(property, arguments.group); });
    if (!arguments.pattern.empty())
        std::erase_if(properties,
                      [&](const auto& property) { return !matchesPattern(property, arguments.pattern); });
    return true;
}

void printTable(const Properties& properties, bool guids) {
    std::vector<std::string> titles{"PROGRAM", "GROUP", "NAME", "TYPE", "VALUE"};
    if (guids)
        titles.insert(titles.end() - 1, "COMPONENT:GROUP:GUID");
    Table table(titles);
    for (const PropertyGetResponse& property : properties) {
        std::vector<std::string> row{property.componentString, property.groupString, property.nameString,
                                     std::string(nameOf(typeOf(property.guid))), property.value};
        if (guids)
            row.insert(row.end() - 1, wholeKey(property));
        table.addRow(row);
    }
    table.print(std::cout, terminalWidth());
}

void printJson(const Properties& properties) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const PropertyGetResponse& property : properties)
        list.push_back(jsonOf(property));
    std::cout << linesOf(list) << '\n';
}

int list(const CommonOptions& options, const Arguments& arguments) {
    std::optional<Snapshot> snapshot = takeSnapshot(options);
    if (!snapshot || !select(snapshot->properties, arguments))
        return kFailed;
    Properties& properties = snapshot->properties;
    std::ranges::sort(properties, {}, [](const PropertyGetResponse& property) {
        return std::tie(property.componentString, property.component, property.groupString, property.group,
                        property.nameString, property.guid);
    });
    if (properties.empty() && arguments.filter()) {
        complain("no property is like this; \"picl list\" alone shows all");
        return kFailed;
    }
    if (options.json)
        printJson(properties);
    else if (properties.empty())
        complain("the server is there, but no program that has properties");
    else
        printTable(properties, arguments.guids);
    return kDone;
}

} // namespace

void addListCommand(CommandLine& line) {
    const auto arguments = std::make_shared<Arguments>();
    CLI::App& command =
        line.addCommand("list", "List properties and their values",
                        [arguments](const CommonOptions& options) { return list(options, *arguments); });
    const CLI::Validator isSomething = notEmptyCheck("leave it out to list all");
    command
        .add_option("PATTERN", arguments->pattern,
                    "Only those with this in their names or GUIDs, in whatever case; with * ? [] a whole "
                    "name, group/name or program/group/name")
        ->type_name("")
        ->check(isSomething);
    command.add_option("--program", arguments->program, "Only those of this program, by name or GUID")
        ->type_name("NAME")
        ->check(isSomething);
    command.add_option("--group", arguments->group, "Only those of this group, by name or GUID")
        ->type_name("NAME")
        ->check(isSomething);
    command.add_flag("--guids", arguments->guids, "Show the GUIDs, too");
    line.addJsonOption(command, "Print a JSON array, an object for each property");
}
