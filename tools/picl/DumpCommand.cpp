#include "tools/picl/DumpCommand.h"

#include "tools/picl/CommandSupport.h"
#include "tools/picl/PropertyDocument.h"
#include "tools/picl/PropertyType.h"
#include "tools/picl/VisibleText.h"

#include <algorithm>
#include <fstream>
#include <iostream>

namespace {

constexpr std::string_view kPreferences = "Preferences"; // so end the names of their groups

struct Arguments {
    std::string program;
    std::vector<std::string> groups;
    std::string file;
    bool all = false;
};

bool isAsked(const PropertyGetResponse& property, const Arguments& arguments) {
    if (typeOf(property.guid) == PropertyType::Trigger) // it has no value that could be loaded
        return false;
    if (!arguments.groups.empty())
        return std::ranges::any_of(arguments.groups, [&](const std::string& group) {
            return withoutCase(group) == withoutCase(property.groupString) || group == property.group;
        });
    return arguments.all || property.groupString.ends_with(kPreferences);
}

std::vector<std::string> groupsOf(const Properties& properties) {
    std::vector<std::string> groups;
    for (const PropertyGetResponse& property : properties) {
        if (std::ranges::find(groups, property.groupString) == groups.end())
            groups.push_back(property.groupString);
    }
    return groups;
}

/// Leaves what is asked for. Returns whether that is something; complains if not.
bool select(Properties& properties, const Arguments& arguments) {
    const std::optional<std::string> component = findProgram(properties, arguments.program);
    if (!component)
        return false;
    std::erase_if(properties, [&](const auto& property) { return property.component != *component; });
    const std::vector<std::string> groups = groupsOf(properties);
    for (const std::string& group : arguments.groups) {
        if (std::ranges::none_of(properties, [&](const auto& property) {
                return isAsked(property, {.program = {}, .groups = {group}, .file = {}, .all = false});
            })) {
            complain(inQuotes(arguments.program) + " has no group " + inQuotes(group) + "; it has", groups);
            return false;
        }
    }
    std::erase_if(properties, [&](const auto& property) { return !isAsked(property, arguments); });
    if (properties.empty())
        complain(inQuotes(arguments.program) +
                     " has no preferences; name a group by --group, or say --all; it has",
                 groups);
    return !properties.empty();
}

/// Asks the owner for the values, which a server could only remember. Returns whether it told them all;
/// complains if not.
bool refresh(PropertySession& session, Properties& properties) {
    std::vector<PropertyGetRequest> requests;
    for (const PropertyGetResponse& property : properties)
        requests.push_back(requestFor(property));
    const auto answers = session.ask(requests);
    if (!answers) {
        complain(session.why());
        return false;
    }
    for (std::size_t index = 0; index < properties.size(); ++index) {
        const PropertyGetResponse* answer = checkAnswer((*answers)[index], fullName(properties[index]));
        if (answer == nullptr)
            return false;
        properties[index] = *answer;
    }
    return true;
}

/// Returns whether a document can name all of @p properties; complains if not.
bool checkGuids(const Properties& properties) {
    for (const PropertyGetResponse& property : properties) {
        if (!isUtf8(property.component) || !isUtf8(property.group) || !isUtf8(property.guid)) {
            complain(inQuotes(fullName(property)) + " cannot be dumped: its GUIDs are no text");
            return false;
        }
    }
    return true;
}

int write(const std::string& document, const std::string& path) {
    if (path.empty() || path == "-") {
        std::cout << document;
        return kDone;
    }
    std::ofstream file(path, std::ios::binary);
    file << document;
    file.close();
    if (file.good())
        return kDone;
    complain("cannot write " + path + "; name another file by -o");
    return kFailed;
}

int dump(const CommonOptions& options, const Arguments& arguments) {
    std::optional<Snapshot> snapshot = takeSnapshot(options);
    if (!snapshot || !select(snapshot->properties, arguments) || !checkGuids(snapshot->properties) ||
        !refresh(*snapshot->session, snapshot->properties))
        return kFailed;
    return write(printDocument(snapshot->properties), arguments.file);
}

} // namespace

void addDumpCommand(CommandLine& line) {
    const auto arguments = std::make_shared<Arguments>();
    CLI::App& command =
        line.addCommand("dump", "Write the preferences of a program as a JSON document",
                        [arguments](const CommonOptions& options) { return dump(options, *arguments); });
    command.add_option("PROGRAM", arguments->program, "The program, by name or GUID")
        ->type_name("")
        ->required()
        ->check(notEmptyCheck(kSeeList));
    command.add_option("-o,--output", arguments->file, "Write to this file (default: the standard output)")
        ->type_name("FILE")
        ->check(notEmptyCheck("- is the standard output"));
    CLI::Option* group =
        command
            .add_option("--group", arguments->groups,
                        "Instead of the groups whose names end in \"Preferences\" this one, by name or GUID; "
                        "may be repeated")
            ->type_name("NAME")
            ->allow_extra_args(false)
            ->check(notEmptyCheck(kSeeList));
    command.add_flag("--all", arguments->all, "All groups")->excludes(group);
    command.footer("Triggers are left out. \"picl load\" reads the document.\n"
                   "Exit status: 0 done; 1 not found, no answer or no server; 2 bad arguments.");
}
