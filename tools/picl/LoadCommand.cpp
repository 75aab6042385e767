#include "tools/picl/LoadCommand.h"

#include "tools/picl/CommandSupport.h"
#include "tools/picl/PropertyDocument.h"
#include "tools/picl/PropertySetting.h"
#include "tools/picl/PropertyType.h"
#include "tools/picl/VisibleText.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>

namespace {

struct Arguments {
    std::string file;
    bool dryRun = false;
};

struct Tally {
    int changed = 0;
    int same = 0;
    int missing = 0;
    int refused = 0;
};

std::string shortName(const PropertyGetResponse& property) {
    return property.groupString + '/' + property.nameString;
}

std::optional<Properties> readFile(const std::string& path) {
    std::ifstream file;
    if (path != "-") {
        file.open(path, std::ios::binary);
        if (!file || file.peek() == std::ifstream::traits_type::eof()) {
            complain("cannot read " + path + ", or it is empty; name a file that \"picl dump\" wrote, or -");
            return {};
        }
    }
    std::istream& in = path == "-" ? std::cin : file;
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    std::string why;
    std::optional<Properties> properties = readDocument(text, why);
    if (!properties)
        complain((path == "-" ? "the standard input" : path) + ": " + why + "; nothing was set");
    return properties;
}

void tellChange(const PropertyGetResponse& before, const std::string& value, bool isDone) {
    std::cout << visibleText(shortName(before) + ": " + before.value + (isDone ? " -> " : " would become ") +
                             value)
              << '\n';
}

/// Sets one property. Returns false, and complains, where nothing more can be set.
bool setOne(PropertySession& session, const PropertyGetResponse& before, const std::string& value,
            Tally& tally) {
    const auto after = session.set(requestFor(before), value);
    if (!after) {
        complain(shortName(before) + ": " + session.why());
        return false;
    }
    const Setting setting = judge(before, value, *after);
    if (after->status == status::kSuccessful && isTaken(setting)) {
        ++tally.changed;
        tellChange(before, after->value, true);
    } else if (after->status == status::kSuccessful) {
        ++tally.refused;
        complain(sentenceFor(setting, shortName(before), value, *after));
    } else {
        ++tally.missing;
        complain(shortName(before) + " is not there any more");
    }
    return true;
}

/// Sets what differs. Returns whether the end was reached.
bool setAll(Snapshot& snapshot, const Properties& document, bool dryRun, Tally& tally) {
    for (const PropertyGetResponse& wanted : document) {
        const auto before =
            std::ranges::find_if(snapshot.properties, [&](const PropertyGetResponse& property) {
                return isOn(property, requestFor(wanted));
            });
        if (before == snapshot.properties.end()) {
            ++tally.missing;
            complain(shortName(wanted) + " is not there");
        } else if (typeOf(wanted.guid) == PropertyType::Trigger) {
            ++tally.refused;
            complain(shortName(wanted) + " is a trigger and is not fired; \"picl set\" does that");
        } else if (meanTheSame(typeOf(wanted.guid), wanted.value, before->value)) {
            ++tally.same;
        } else if (!isValue(typeOf(wanted.guid), wanted.value)) {
            ++tally.refused;
            complain(sentenceForUnsent(typeOf(wanted.guid), shortName(wanted), wanted.value));
        } else if (dryRun) {
            ++tally.changed;
            tellChange(*before, wanted.value, false);
        } else if (!setOne(*snapshot.session, *before, wanted.value, tally)) {
            return false;
        }
    }
    return true;
}

bool hasProgram(const Properties& properties, const PropertyGetResponse& wanted) {
    return std::ranges::find(properties, wanted.component, &PropertyGetResponse::component) !=
           properties.end();
}

int load(const CommonOptions& options, const Arguments& arguments) {
    const std::optional<Properties> document = readFile(arguments.file);
    std::optional<Snapshot> snapshot = document ? takeSnapshot(options) : std::nullopt;
    if (!snapshot)
        return kFailed;
    if (!hasProgram(snapshot->properties, document->front())) {
        complain("the program " + inQuotes(document->front().componentString) +
                 " is not there; nothing was set");
        return kFailed;
    }
    Tally tally;
    const bool isWhole = setAll(*snapshot, *document, arguments.dryRun, tally);
    std::cout << tally.changed << (arguments.dryRun ? " would change, " : " changed, ") << tally.same
              << " had their value, " << tally.missing << " not there, " << tally.refused << " refused\n";
    return isWhole && tally.missing == 0 && tally.refused == 0 ? kDone : kFailed;
}

} // namespace

void addLoadCommand(CommandLine& line) {
    const auto arguments = std::make_shared<Arguments>();
    CLI::App& command =
        line.addCommand("load", "Set the properties of a program from a JSON document",
                        [arguments](const CommonOptions& options) { return load(options, *arguments); });
    command
        .add_option("FILE", arguments->file, "A document as \"picl dump\" writes it; - is the standard input")
        ->type_name("")
        ->required()
        ->check(notEmptyCheck("- is the standard input"));
    command.add_flag("--dry-run", arguments->dryRun, "Only tell what would change");
    command.footer(
        "Sets what differs and tells what became of it. A file that is no such document sets nothing.\n"
        "Exit status: 0 all is as the document says; 1 something is not; 2 bad arguments.");
}
