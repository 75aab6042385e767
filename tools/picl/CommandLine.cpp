#include "tools/picl/CommandLine.h"

#include "platform/os/DeviceRoot.h"
#include "tools/picl/CommandSupport.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double kDaySeconds = 86'400;

std::string checkSeconds(const std::string& text) {
    double seconds = 0;
    const bool isTime =
        CLI::detail::lexical_cast(text, seconds) && seconds > 0 && seconds <= kDaySeconds; // no NaN either
    return isTime ? "" : text + " is no number of seconds above 0 and up to a day";
}

std::string checkPlace(const std::string& text) {
    return parseServerPlace(text) ? "" : "\"" + text + "\" is no host, and no host with a port";
}

} // namespace

CLI::Validator secondsCheck() { return {checkSeconds, "", "seconds"}; }

CLI::Validator notEmptyCheck(const std::string& advice) {
    const auto check = [advice](const std::string& text) {
        return text.empty() ? "an empty text names nothing; " + advice : std::string();
    };
    return {check, "", "text"};
}

std::chrono::milliseconds millisecondsOf(double seconds) {
    return std::chrono::milliseconds(std::max<long long>(1, std::llround(seconds * 1000)));
}

CommandLine::CommandLine()
    : m_app(
          "Reads, sets and watches the properties of the printer's programs, through their property server.",
          "picl") {
    m_app.require_subcommand(1);
    addCommonOptions(m_app);
}

CLI::App& CommandLine::addCommand(const std::string& name, const std::string& help, Action action) {
    CLI::App& command = *m_app.add_subcommand(name, help);
    addCommonOptions(command);
    command.callback([this, action = std::move(action)] { m_chosen = action; });
    return command;
}

// In front of the command and behind it.
void CommandLine::addCommonOptions(CLI::App& command) {
    constexpr auto kGroup = "Options for the property server";
    command
        .add_option_function<std::string>(
            "--root", [](const std::string& folder) { os::setDeviceRoot(folder); },
            "Device root of the printer (default: the folder \"printer\" beside this program, or /)")
        ->type_name("DIR")
        ->group(kGroup)
        ->check(CLI::Validator(CLI::ExistingDirectory).description(""))
        ->trigger_on_parse();
    command
        .add_option_function<std::string>(
            "--tcp", [this](const std::string& text) { m_options.place = *parseServerPlace(text); },
            "Ask the one on this host, port 9102 unless told, instead of that on the device root")
        ->type_name("HOST[:PORT]")
        ->group(kGroup)
        ->check(CLI::Validator(checkPlace, "", "place"));
    command
        .add_option_function<double>(
            "--timeout", [this](const double& seconds) { m_options.patience = millisecondsOf(seconds); },
            "How long to wait for an answer (default: 5)")
        ->type_name("SECONDS")
        ->group(kGroup)
        ->check(secondsCheck());
}

int CommandLine::refuseOption(const std::string& option) {
    complain(inQuotes(option) + " is no option here, see --help; what only begins like one stands behind --");
    return kBadArguments;
}

int CommandLine::refuseCommand(const std::string& name) const {
    std::vector<std::string> names;
    for (const CLI::App* command : m_app.get_subcommands({}))
        names.push_back(command->get_name());
    complainOfMissing("there is no command " + inQuotes(name), closestOf(std::move(names), name),
                      "picl --help");
    return kBadArguments;
}

void CommandLine::addJsonOption(CLI::App& command, const std::string& help) {
    command.add_flag("--json", m_options.json, help);
}

int CommandLine::run(int argc, char* argv[]) {
    try {
        m_app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const std::vector<std::string> rest = m_app.remaining(true);
        if (error.get_exit_code() != 0 && !rest.empty() && rest.front().starts_with('-'))
            return refuseOption(rest.front());
        if (m_app.get_subcommands().empty() && !rest.empty())
            return refuseCommand(rest.front());
        return m_app.exit(error) == 0 ? kDone : kBadArguments;
    }
    return m_chosen ? m_chosen(m_options) : kDone;
}
