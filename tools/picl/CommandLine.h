#pragma once

#include "tools/picl/ServerPlace.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <functional>
#include <string>

enum ExitStatus { kDone = 0, kFailed = 1, kBadArguments = 2 };

/// What the options say that the commands have in common.
struct CommonOptions {
    ServerPlace place;
    std::chrono::milliseconds patience{5000};
    bool json = false;
};

/// The command line of the program: its commands, the options that they have in common, and the choice of
/// one.
class CommandLine {
public:
    /// What a command does once all is parsed. Returns the exit status.
    using Action = std::function<int(const CommonOptions&)>;

    CommandLine();

    /// Adds a command that asks a property server. Returns it, for arguments of its own.
    CLI::App& addCommand(const std::string& name, const std::string& help, Action action);

    /// Adds an option "--json", told as @p help, to @p command.
    void addJsonOption(CLI::App& command, const std::string& help);

    /// The whole, for commands that need other options.
    [[nodiscard]] CLI::App& app() { return m_app; }

    /// Carries out the command that is told. Returns the exit status.
    int run(int argc, char* argv[]);

private:
    void addCommonOptions(CLI::App& command);
    [[nodiscard]] static int refuseOption(const std::string& option);
    [[nodiscard]] int refuseCommand(const std::string& name) const;

    CLI::App m_app;
    CommonOptions m_options;
    Action m_chosen;
};

/// Returns a check of a number of seconds, more than 0 and at most a day.
[[nodiscard]] CLI::Validator secondsCheck();

/// Returns a check that refuses an empty text, which names nothing, and says @p advice.
[[nodiscard]] CLI::Validator notEmptyCheck(const std::string& advice);

/// Returns @p seconds as a time, at least 1 ms.
[[nodiscard]] std::chrono::milliseconds millisecondsOf(double seconds);
