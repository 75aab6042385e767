#include "tools/picl/CompleteCommand.h"

#include "tools/picl/CommandLine.h"
#include "tools/picl/PropertyNames.h"
#include "tools/picl/VisibleText.h"

#include <iostream>
#include <memory>
#include <set>

namespace {

/// Returns the candidates of a kind; those that no shell could type are left out.
std::set<std::string> candidates(const Properties& properties, const std::string& kind) {
    const PropertyNames names(properties);
    std::set<std::string> found;
    for (const PropertyGetResponse& property : properties) {
        std::string name = kind == "programs" ? property.componentString
                           : kind == "groups" ? property.groupString
                                              : names.uniqueSpelling(property);
        if (visibleText(name) == name)
            found.insert(std::move(name));
    }
    return found;
}

// Nobody wants to read errors while he types.
int complete(const CommonOptions& options, const std::string& kind) {
    std::string why;
    const std::unique_ptr<PropertySession> session =
        PropertySession::open(options.place, options.patience, why);
    const std::optional<Properties> properties = session ? session->all() : std::nullopt;
    if (!properties)
        return kFailed;
    for (const std::string& candidate : candidates(*properties, kind))
        std::cout << candidate << '\n';
    return kDone;
}

} // namespace

void addCompleteCommand(CommandLine& line) {
    const auto kind = std::make_shared<std::string>();
    CLI::App& command =
        line.addCommand("complete", "Print what a shell can complete",
                        [kind](const CommonOptions& options) { return complete(options, *kind); });
    command.add_option("KIND", *kind, "What to complete")
        ->required()
        ->check(CLI::IsMember({"properties", "programs", "groups"}));
    command.group(""); // not told in the help
}
