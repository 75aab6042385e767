#include "tools/picl/CompleteCommand.h"

#include "tools/picl/CommandLine.h"
#include "tools/picl/PropertyNames.h"
#include "tools/picl/VisibleText.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace {

struct Arguments {
    std::string kind;
    std::string prefix;
};

/// Returns the spellings that a word of this kind can have for @p property, the best first.
std::vector<std::string> spellings(const PropertyNames& names, const PropertyGetResponse& property,
                                   const std::string& kind) {
    if (kind == "programs")
        return {property.componentString};
    if (kind == "groups")
        return {property.groupString};
    return names.uniqueSpellings(property);
}

/// Returns of each property the best spelling that begins with the prefix. What has characters that no shell
/// could type is left out.
std::set<std::string> candidates(const Properties& properties, const Arguments& arguments) {
    const PropertyNames names(properties);
    const std::string prefix = withoutCase(arguments.prefix);
    std::set<std::string> found;
    for (const PropertyGetResponse& property : properties) {
        const std::vector<std::string> all = spellings(names, property, arguments.kind);
        const auto best = std::ranges::find_if(all, [&](const std::string& spelling) {
            return withoutCase(spelling).starts_with(prefix) && visibleText(spelling) == spelling;
        });
        if (best != all.end())
            found.insert(*best);
    }
    return found;
}

// Nobody wants to read errors while he types.
int complete(const CommonOptions& options, const Arguments& arguments) {
    std::string why;
    const std::unique_ptr<PropertySession> session =
        PropertySession::open(options.place, options.patience, why);
    const std::optional<Properties> properties = session ? session->all() : std::nullopt;
    if (!properties)
        return kFailed;
    for (const std::string& candidate : candidates(*properties, arguments))
        std::cout << candidate << '\n';
    return kDone;
}

} // namespace

void addCompleteCommand(CommandLine& line) {
    const auto arguments = std::make_shared<Arguments>();
    CLI::App& command =
        line.addCommand("complete", "Print what a shell can complete",
                        [arguments](const CommonOptions& options) { return complete(options, *arguments); });
    command.add_option("KIND", arguments->kind, "What to complete")
        ->required()
        ->check(CLI::IsMember({"properties", "programs", "groups"}));
    command.add_option("PREFIX", arguments->prefix, "How it begins");
    command.group(""); // not told in the help
}
