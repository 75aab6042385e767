#include "app/UpgradeMessage.h"
#include "platform/os/DeviceRoot.h"
#include "tools/firmware/FirmwareDriver.h"
#include "tools/upgrader/ConsoleReport.h"
#include "tools/upgrader/Scenario.h"
#include "tools/upgrader/ScenarioPlayer.h"
#include "tools/upgrader/UpgraderLink.h"

#include <CLI/CLI.hpp>

#include <cmath>
#include <cstdio>
#include <exception>
#include <iostream>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr double kDaySeconds = 86'400;
constexpr double kSendPatienceSeconds = 5;

enum ExitStatus { kDone = 0, kOtherwise = 1, kBadArguments = 2, kNoAnswer = 3 };

struct Arguments {
    std::string deviceRoot;
    std::string scenario;
    std::vector<std::string> codes;
    bool force = false;
    double followSeconds = 0;
    double patienceSeconds = 0; // none was given
    ScenarioOptions options{
        .printer = {"1.4.2", "Label Printer", "EU"},
        .package = {"1.5.0", "Label Printer", "EU"},
    };
};

std::chrono::milliseconds milliseconds(double seconds) {
    return std::chrono::milliseconds(std::llround(seconds * 1000));
}

std::string shortest(double number) {
    std::ostringstream text;
    text << number;
    return text.str();
}

std::string scenarioList() {
    std::string list = "Stories:\n";
    for (const Scenario& scenario : scenarios()) {
        std::string name(scenario.name);
        name.resize(20, ' ');
        list += "  " + name + std::string(scenario.summary) + '\n';
    }
    return list;
}

std::string codeList() {
    std::string list = "Codes:\n";
    for (const MessageRule& rule : kMessageRules) {
        if (!rule.name.empty())
            list += "  " + std::string(rule.code < 10 ? " " : "") + std::to_string(rule.code) + ' ' +
                    std::string(rule.name) + '\n';
    }
    return list;
}

std::string checkText(const std::string& text) {
    if (text.size() > UpgraderLink::kMaxTextBytes)
        return "a text of the record holds at most " + std::to_string(UpgraderLink::kMaxTextBytes) + " bytes";
    return text.find('\0') == std::string::npos ? "" : "a text must not hold a NUL";
}

// Like CLI::Range, but what is no number at all is not between anything.
CLI::Validator numberBetween(double lowest, double highest) {
    const auto check = [lowest, highest](const std::string& text) -> std::string {
        double number = 0;
        const bool isBetween =
            CLI::detail::lexical_cast(text, number) && number >= lowest && number <= highest;
        return isBetween ? "" : text + " is not between " + shortest(lowest) + " and " + shortest(highest);
    };
    return {check, shortest(lowest) + " to " + shortest(highest), "between"};
}

std::string checkScenario(const std::string& name) {
    return findScenario(name) != nullptr ? "" : "there is no story \"" + name + "\"\n" + scenarioList();
}

void addCommonOptions(CLI::App& command, Arguments& arguments) {
    auto text = [&](const char* name, std::string& value, const char* help) {
        command.add_option(name, value, help)
            ->check(CLI::Validator(checkText, "TEXT", "text"))
            ->capture_default_str();
    };
    text("--printer-version", arguments.options.printer.version, "Version of the printer's software");
    text("--printer-name", arguments.options.printer.deviceName, "Device name of the printer");
    text("--printer-region", arguments.options.printer.region, "Region of the printer");
    text("--package-version", arguments.options.package.version, "Version in the package");
    text("--package-name", arguments.options.package.deviceName, "Device name in the package");
    text("--package-region", arguments.options.package.region, "Region of the package");
    command.add_option("--package-size", arguments.options.packageSize, "Bytes of the package")
        ->capture_default_str();
    command
        .add_option("--patience", arguments.patienceSeconds,
                    "Seconds to wait for each answer of the user or the application (default: a day to play, "
                    "5 to send)")
        ->check(numberBetween(0.001, kDaySeconds));
    command
        .add_option("--root", arguments.deviceRoot,
                    "Device root of the printer (default: the folder \"printer\" beside this program, or /)")
        ->check(CLI::ExistingDirectory);
}

// Returns the code that is called @p text or has that number, or nothing.
std::optional<std::uint8_t> parseCode(const std::string& text, bool anyNumber) {
    if (const auto named = messageCode(text))
        return named;
    if (text.empty() || text.size() > 3 || text.find_first_not_of("0123456789") != std::string::npos ||
        std::stoul(text) > 255)
        return {};
    const auto number = static_cast<std::uint8_t>(std::stoul(text));
    if (!anyNumber && messageRule(number).name.empty())
        return {};
    return number;
}

int sendCodes(const Arguments& arguments, ScenarioPlayer& player) {
    for (const std::string& text : arguments.codes) {
        if (!player.send(*parseCode(text, arguments.force)))
            return kNoAnswer;
    }
    if (arguments.followSeconds > 0)
        player.follow(milliseconds(arguments.followSeconds));
    return kDone;
}

int playScenario(const Scenario& scenario, ScenarioPlayer& player) {
    switch (player.play(scenario)) {
    case ScenarioPlayer::Ending::AsTold:
        std::cout << "   The story \"" << scenario.name << "\" has been played to its end.\n";
        return kDone;
    case ScenarioPlayer::Ending::Otherwise:
        std::cerr << "upgrader-sim: the story \"" << scenario.name << "\" took another way\n";
        return kOtherwise;
    case ScenarioPlayer::Ending::NoAnswer:
        std::cerr << "upgrader-sim: no answer from the application\n";
        return kNoAnswer;
    }
    return kOtherwise;
}

int refuse(const std::string& why) {
    std::cerr << "upgrader-sim: " << why << '\n';
    return kBadArguments;
}

int run(Arguments& arguments) {
    if (!arguments.deviceRoot.empty())
        os::setDeviceRoot(arguments.deviceRoot);
    const Scenario* scenario = findScenario(arguments.scenario); // null: single codes are sent
    const double ownPatience = scenario == nullptr ? kSendPatienceSeconds : kDaySeconds;
    arguments.options.patience =
        milliseconds(arguments.patienceSeconds > 0 ? arguments.patienceSeconds : ownPatience);

    std::string why;
    const bool onBattery = scenario != nullptr && scenario->startsOnBattery;
    const std::unique_ptr<FirmwareDriver> firmware = onBattery ? FirmwareDriver::create(false, why) : nullptr;
    if (onBattery && !firmware)
        return refuse(why);
    const std::unique_ptr<UpgraderLink> link = UpgraderLink::create(why);
    if (!link)
        return refuse(why);
    ConsoleReport report(std::cout, ::isatty(STDOUT_FILENO) == 1);
    ScenarioPlayer player(*link, arguments.options, report, firmware.get());
    return scenario == nullptr ? sendCodes(arguments, player) : playScenario(*scenario, player);
}

int parseAndRun(int argc, char* argv[]) {
    Arguments arguments;
    CLI::App app(
        "Plays the upgrader of the printer: sends codes to the application, prints each of its commands.",
        "upgrader-sim");
    app.require_subcommand(1);

    CLI::App* play = app.add_subcommand("play", "Play a whole upgrade with one of its endings");
    play->add_option("NAME", arguments.scenario, "The story, see below")
        ->required()
        ->check(CLI::Validator(checkScenario, "", "story"));
    play->add_option("--speed", arguments.options.speed, "How many times faster than a real upgrade")
        ->check(numberBetween(0.01, 1000))
        ->capture_default_str();
    addCommonOptions(*play, arguments);
    play->footer(
        scenarioList() +
        "\"battery\" plays the printer's firmware as well, on dev/PRN0 of the device root. Start the\n"
        "application after it; boot/systemfeatures.json there must say {\"features\": [\"Battery\"]}.\n"
        "Exit status: 0 as told, 1 another way was taken, 2 bad arguments, 3 no answer.");

    CLI::App* send = app.add_subcommand("send", "Send single codes");
    send->add_flag("--force", arguments.force, "Allow numbers that are no code");
    send->add_option("CODE", arguments.codes, "Codes, by number or name, see below")
        ->required()
        ->expected(1, -1);
    send->add_option("--follow", arguments.followSeconds, "Seconds to print what the application answers")
        ->check(numberBetween(0, kDaySeconds));
    addCommonOptions(*send, arguments);
    send->footer(codeList() + "Exit status: 0 sent, 2 bad arguments, 3 the ring is full.");

    app.footer(scenarioList());
    try {
        app.parse(argc, argv);
        for (const std::string& text : arguments.codes) {
            if (!parseCode(text, arguments.force))
                throw CLI::ValidationError("CODE", "there is no code \"" + text + "\"\n" + codeList());
        }
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kDone : kBadArguments;
    }
    return run(arguments);
}

} // namespace

int main(int argc, char* argv[]) {
    try {
        return parseAndRun(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "upgrader-sim: %s\n", error.what());
        return kBadArguments;
    }
}
