#pragma once

#include "tools/upgrader/Scenario.h"
#include "tools/upgrader/UpgraderLink.h"

#include <chrono>
#include <cstdint>
#include <optional>

class ConsoleReport;
class FirmwareDriver;

/// How a story is played.
struct ScenarioOptions {
    UpgradeInfo printer;
    UpgradeInfo package;
    std::uint32_t packageSize = kReferencePackageSize;
    double speed = 1; ///< 2 plays twice as fast; more than 0.
    std::chrono::milliseconds patience =
        std::chrono::hours(24); ///< For each answer of the user or the application.
};

/// Plays a story over the link, as an upgrader would, and reports each code, command and acknowledgement.
class ScenarioPlayer {
public:
    enum class Ending {
        AsTold,
        Otherwise, ///< The user or the application took another way.
        NoAnswer,  ///< Nothing came within the patience.
    };

    /// The printer on which the upgrade happens has @p firmware; a story that does not start on battery needs
    /// none.
    ScenarioPlayer(UpgraderLink& link, ScenarioOptions options, ConsoleReport& report,
                   FirmwareDriver* firmware = nullptr);

    /// Plays @p scenario to its end. Requires: a firmware, for a scenario that starts on battery. Blocks.
    [[nodiscard]] Ending play(const Scenario& scenario);

    /// Writes the payload that belongs to @p code, if any, and sends the code. Blocks while the ring is full.
    [[nodiscard]] bool send(std::uint8_t code);

    /// Reports what comes from the application for @p time. Blocks that long.
    void follow(std::chrono::milliseconds time);

private:
    using Clock = std::chrono::steady_clock;
    using StepEnd = std::optional<Ending>; // none: the story goes on

    StepEnd perform(const ScenarioStep& step);
    StepEnd sendAll(std::initializer_list<std::uint8_t> codes);
    StepEnd playStages(std::span<const UpgradeStage> stages);
    StepEnd playStage(const UpgradeStage& stage);
    StepEnd awaitDecision(std::uint8_t expected);
    StepEnd awaitCommand(std::uint8_t expected);
    StepEnd awaitAcknowledgement();
    StepEnd pause(Clock::duration time);
    StepEnd connectACPower();
    void writePayload(std::uint8_t code);
    std::optional<UpgraderReply> awaitReply(std::chrono::milliseconds patience);
    [[nodiscard]] Clock::duration scaled(double seconds) const;

    UpgraderLink& m_link;
    ScenarioOptions m_options;
    ConsoleReport& m_report;
    FirmwareDriver* m_firmware;           // may be null
    std::optional<UpgraderReply> m_early; // reported, but not yet looked at by a step
};
