#include "tools/picl/CommandSupport.h"

#include "tools/picl/VisibleText.h"

#include <algorithm>
#include <iostream>
#include <map>
#include <set>
#include <utility>

namespace {

const std::string kList = "picl list"; // which tells what is there

// How long an owner is waited for before all are asked after all.
constexpr std::chrono::milliseconds kHaste{500};

/// Returns component GUID and name of each program.
std::map<std::string, std::string> programsOf(const Properties& properties) {
    std::map<std::string, std::string> programs;
    for (const PropertyGetResponse& property : properties)
        programs.emplace(property.component, property.componentString);
    return programs;
}

template <typename Matches>
std::vector<std::string> componentsThat(const std::map<std::string, std::string>& programs,
                                        const Matches& matches) {
    std::vector<std::string> found;
    for (const auto& [guid, name] : programs) {
        if (matches(guid) || matches(name))
            found.push_back(guid);
    }
    return found;
}

} // namespace

CLI::Option* addNames(CLI::App& command, std::vector<std::string>& names) {
    return command.add_option("NAME", names, "A property, see below")
        ->type_name("")
        ->expected(1, -1)
        ->check(notEmptyCheck(kSeeList));
}

void complain(std::string_view sentence, const std::vector<std::string>& choices) {
    std::cerr << "picl: " << visibleText(sentence) << (choices.empty() ? "\n" : ":\n");
    for (const std::string& choice : choices)
        std::cerr << "  " << visibleText(choice) << '\n';
}

void complainOfMissing(const std::string& sentence, const std::vector<std::string>& closest,
                       const std::string& telling) {
    if (closest.empty())
        complain(sentence + "; see " + inQuotes(telling));
    else
        complain(sentence + "; did you mean", closest);
}

std::unique_ptr<PropertySession> openSession(const CommonOptions& options) {
    std::string why;
    std::unique_ptr<PropertySession> session = PropertySession::open(options.place, options.patience, why);
    if (!session)
        complain(why);
    return session;
}

std::optional<Properties> propertiesFor(PropertySession& session, const std::vector<std::string>& names) {
    const std::set<std::string> distinct(names.begin(), names.end());
    std::vector<PropertyGetRequest> requests;
    for (const std::string& name : distinct) {
        if (std::optional<PropertyGetRequest> request = requestByGuids(name))
            requests.push_back(std::move(*request));
    }
    if (distinct.empty() || requests.size() < distinct.size())
        return session.all();
    auto answers = session.ask(requests, false, kHaste);
    if (!answers)
        return {};
    Properties found;
    for (auto& answer : *answers) {
        if (!answer || answer->status != status::kSuccessful)
            return session.all(); // to tell what is like the name, or that its program hangs
        found.push_back(std::move(*answer));
    }
    return found;
}

std::optional<Snapshot> takeSnapshot(const CommonOptions& options, const std::vector<std::string>& names) {
    Snapshot snapshot{.session = openSession(options), .properties = {}};
    if (!snapshot.session)
        return {};
    std::optional<Properties> properties = propertiesFor(*snapshot.session, names);
    if (!properties) {
        complain(snapshot.session->why());
        return {};
    }
    snapshot.properties = std::move(*properties);
    return snapshot;
}

const PropertyGetResponse* findProperty(const PropertyNames& names, const std::string& name) {
    const std::vector<const PropertyGetResponse*> found = names.find(name);
    if (found.size() == 1)
        return found.front();
    if (found.empty()) {
        complainOfMissing("there is no property " + inQuotes(name), names.closest(name), kList);
        return nullptr;
    }
    std::vector<std::string> candidates;
    candidates.reserve(found.size());
    for (const PropertyGetResponse* candidate : found)
        candidates.push_back(names.uniqueSpellings(*candidate).front());
    complain(inQuotes(name) + " is ambiguous; say one of", candidates);
    return nullptr;
}

std::optional<std::string> findProgram(const Properties& properties, const std::string& program) {
    const std::map<std::string, std::string> programs = programsOf(properties);
    std::vector<std::string> found =
        componentsThat(programs, [&](const std::string& text) { return text == program; });
    if (found.empty())
        found = componentsThat(
            programs, [&](const std::string& text) { return withoutCase(text) == withoutCase(program); });
    if (found.size() == 1)
        return found.front();
    if (!found.empty()) {
        complain(inQuotes(program) + " is ambiguous; say the GUID of one", found);
        return {};
    }
    std::vector<std::string> names;
    names.reserve(programs.size());
    for (const auto& [guid, name] : programs)
        names.push_back(name);
    complainOfMissing("there is no program " + inQuotes(program), closestOf(std::move(names), program),
                      kList);
    return {};
}

const PropertyGetResponse* checkAnswer(const std::optional<PropertyGetResponse>& answer,
                                       const std::string& name) {
    if (!answer)
        complain("the program of " + inQuotes(name) + " does not answer; wait for longer with --timeout");
    else if (answer->status != status::kSuccessful)
        complain(inQuotes(name) + " is not there any more; see " + inQuotes(kList));
    else
        return &*answer;
    return nullptr;
}

std::string inQuotes(std::string_view text) { return '"' + std::string(text) + '"'; }
