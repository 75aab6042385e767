#pragma once

#include <cstdint>
#include <span>
#include <string_view>

/// One step of a story that the simulator plays.
struct ScenarioStep {
    enum class Action {
        SendInfo,       ///< The texts about printer and package, with their two codes.
        Send,           ///< `code`.
        Stages,         ///< The stages of an upgrade from `code` to `lastCode`, each for its time.
        AwaitDecision,  ///< The user's choice; the story goes on with `code`.
        AwaitCommand,   ///< `code`.
        RequestClose,   ///< And the acknowledgement.
        ConfirmStart,   ///< And the acknowledgement.
        ConnectACPower, ///< Once the application has taken all and a moment has passed.
        Pause,
    };
    Action action = Action::Pause;
    std::uint8_t code = 0;
    std::uint8_t lastCode = 0;
};

/// A story with one of the endings of an upgrade.
struct Scenario {
    std::string_view name;
    std::string_view summary;
    std::span<const ScenarioStep> steps;
    bool startsOnBattery = false; ///< Needs the printer's firmware, with AC power off at the start.
};

/// A stage of the upgrade as the simulated upgrader goes through it.
struct UpgradeStage {
    std::uint8_t code = 0;
    std::string_view text;
    int startPercent = 0;
    int endPercent = 0;
    double seconds = 0; ///< For a package of kReferencePackageSize where it grows with the package.
    bool growsWithPackage = false;
};

constexpr std::uint32_t kReferencePackageSize = 15'500'000;

/// Returns all stories, in the order in which they are listed to a user.
std::span<const Scenario> scenarios();

/// Returns the story called @p name, or null.
const Scenario* findScenario(std::string_view name);

/// Returns the stages from @p firstCode to @p lastCode, in their order.
std::span<const UpgradeStage> upgradeStages(std::uint8_t firstCode, std::uint8_t lastCode);
