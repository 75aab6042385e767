#include "tools/picl/WatchCommand.h"

#include "tools/picl/ChangeTracker.h"
#include "tools/picl/CommandSupport.h"
#include "tools/picl/WatchPrinter.h"

#include <algorithm>
#include <iostream>

using Clock = PropertySession::Clock;

namespace {

struct Arguments {
    std::vector<std::string> names;
    std::size_t count = 0; // no limit
    double seconds = 0;    // no limit
};

// Who interrupts knows why it ends.
void complainOf(const PropertySession& session) {
    if (session.outcome() != PropertyClient::Result::Interrupted)
        complain(session.why());
}

/// Returns what is watched, as it stands now, in the order told; nothing, and complains, on failure.
std::optional<Properties> subscribe(PropertySession& session, const std::vector<std::string>& names) {
    std::optional<Properties> all = names.empty() ? session.all(true) : propertiesFor(session, names);
    if (!all) {
        complainOf(session);
        return {};
    }
    if (names.empty())
        return all;
    const PropertyNames known(*all);
    std::vector<PropertyGetRequest> requests;
    for (const std::string& name : names) {
        if (const PropertyGetResponse* property = findProperty(known, name))
            requests.push_back(requestFor(*property));
    }
    if (requests.size() != names.size())
        return {};
    const auto answers = session.ask(requests, true);
    if (!answers) {
        complainOf(session);
        return {};
    }
    Properties watched;
    for (std::size_t index = 0; index < names.size(); ++index) {
        const PropertyGetResponse* property = checkAnswer((*answers)[index], names[index]);
        if (property == nullptr)
            return {};
        watched.push_back(*property);
    }
    return watched;
}

/// Prints changes until there were enough, or the time is over, or a signal came.
int follow(PropertySession& session, const Arguments& arguments, ChangeTracker& tracker,
           WatchPrinter& printer, Clock::time_point end) {
    for (std::size_t count = 0; arguments.count == 0 || count < arguments.count;) {
        const std::optional<PropertyGetResponse> report = session.next(end);
        if (!report && (session.outcome() == PropertyClient::Result::TimedOut ||
                        session.outcome() == PropertyClient::Result::Interrupted))
            return kDone;
        if (!report) {
            complain("the property server has gone; start it again with \"picl serve\"");
            return kFailed;
        }
        const Change change = tracker.take(*report);
        if (change == Change::None)
            continue;
        ++count;
        if (!printer.print(change, *report))
            return kFailed;
    }
    return kDone;
}

int watch(const CommonOptions& options, const Arguments& arguments) {
    const Clock::time_point end =
        arguments.seconds > 0 ? Clock::now() + millisecondsOf(arguments.seconds) : Clock::time_point::max();
    const std::unique_ptr<PropertySession> session = openSession(options);
    if (!session)
        return kFailed;
    session->interruptOnSignals();
    const std::optional<Properties> present = subscribe(*session, arguments.names);
    if (!present)
        return session->outcome() == PropertyClient::Result::Interrupted ? kDone : kFailed;
    ChangeTracker tracker(arguments.names.empty());
    WatchPrinter printer(std::cout, options.json);
    for (const PropertyGetResponse& property : *present) {
        tracker.start(property);
        if (!printer.print(Change::None, property))
            return kFailed;
    }
    return follow(*session, arguments, tracker, printer, end);
}

} // namespace

void addWatchCommand(CommandLine& line) {
    const auto arguments = std::make_shared<Arguments>();
    CLI::App& command =
        line.addCommand("watch", "Print what becomes of properties, until interrupted",
                        [arguments](const CommonOptions& options) { return watch(options, *arguments); });
    addNames(command, arguments->names);
    command.add_option("--count", arguments->count, "End after so many changes")
        ->type_name("N")
        ->check(CLI::PositiveNumber.description(""));
    command.add_option("--for", arguments->seconds, "End after so many seconds")
        ->type_name("SECONDS")
        ->check(secondsCheck());
    line.addJsonOption(command, "Print a JSON object a line");
    command.footer("Prints the present values, then each change with its local time; without names of all\n"
                   "properties, of those too that come later.\n" +
                   std::string(kNamesHelp));
}
