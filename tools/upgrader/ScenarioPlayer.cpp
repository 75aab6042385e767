#include "tools/upgrader/ScenarioPlayer.h"

#include "tools/firmware/FirmwareDriver.h"
#include "tools/upgrader/ConsoleReport.h"

#include "app/UpgradeMessage.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::chrono::milliseconds kBarInterval{100};
constexpr double kPauseSeconds = 2;
constexpr double kOnBatterySeconds = 5;

bool isExit(const UpgraderReply& reply) {
    return reply.kind == UpgraderReply::Kind::Command && reply.command == CommandUiExiting;
}

} // namespace

ScenarioPlayer::ScenarioPlayer(UpgraderLink& link, ScenarioOptions options, ConsoleReport& report,
                               FirmwareDriver* firmware)
    : m_link(link), m_options(std::move(options)), m_report(report), m_firmware(firmware) {}

ScenarioPlayer::Ending ScenarioPlayer::play(const Scenario& scenario) {
    for (const ScenarioStep& step : scenario.steps) {
        if (const StepEnd end = perform(step))
            return *end;
    }
    return Ending::AsTold;
}

ScenarioPlayer::StepEnd ScenarioPlayer::perform(const ScenarioStep& step) {
    switch (step.action) {
    case ScenarioStep::Action::SendInfo:
        return sendAll({MsgPrinterInfo, MsgPackageInfo});
    case ScenarioStep::Action::Send:
        return sendAll({step.code});
    case ScenarioStep::Action::Stages:
        return playStages(upgradeStages(step.code, step.lastCode));
    case ScenarioStep::Action::AwaitDecision:
        return awaitDecision(step.code);
    case ScenarioStep::Action::AwaitCommand:
        return awaitCommand(step.code);
    case ScenarioStep::Action::RequestClose:
        m_link.requestClose();
        m_report.signalled(eventName(UpgradeEvent::RequestClose));
        return awaitAcknowledgement();
    case ScenarioStep::Action::ConfirmStart:
        m_link.confirmStart();
        m_report.signalled(eventName(UpgradeEvent::StartConfirm));
        return awaitAcknowledgement();
    case ScenarioStep::Action::ConnectACPower:
        return connectACPower();
    case ScenarioStep::Action::Pause:
        return pause(scaled(kPauseSeconds));
    }
    return {};
}

void ScenarioPlayer::writePayload(std::uint8_t code) {
    switch (messageRule(code).payload) {
    case MessagePayload::None:
        break;
    case MessagePayload::PrinterInfo:
        m_link.writePrinterInfo(m_options.printer);
        break;
    case MessagePayload::PackageInfo:
        m_link.writePackageInfo(m_options.package);
        break;
    case MessagePayload::PackageSize:
        m_link.writePackageSize(m_options.packageSize);
        break;
    }
}

bool ScenarioPlayer::send(std::uint8_t code) {
    writePayload(code);
    if (!m_link.send(code, m_options.patience)) {
        m_report.note("The ring is full, and nobody takes the codes.");
        return false;
    }
    m_report.sent(code);
    return true;
}

ScenarioPlayer::StepEnd ScenarioPlayer::sendAll(std::initializer_list<std::uint8_t> codes) {
    for (const std::uint8_t code : codes) {
        if (!send(code))
            return Ending::NoAnswer;
    }
    return {};
}

ScenarioPlayer::StepEnd ScenarioPlayer::playStages(std::span<const UpgradeStage> stages) {
    StepEnd end;
    for (auto stage = stages.begin(); stage != stages.end() && !end; ++stage)
        end = playStage(*stage);
    m_report.endBar();
    return end;
}

ScenarioPlayer::StepEnd ScenarioPlayer::playStage(const UpgradeStage& stage) {
    if (!send(stage.code))
        return Ending::NoAnswer;
    m_report.stageBegins(stage.text, stage.startPercent);

    const double size = stage.growsWithPackage ? m_options.packageSize / double(kReferencePackageSize) : 1;
    const auto begin = Clock::now();
    const Clock::duration time = scaled(stage.seconds * size);
    for (auto passed = Clock::duration::zero(); passed < time; passed = Clock::now() - begin) {
        if (const StepEnd end = pause(std::min<Clock::duration>(time - passed, kBarInterval)))
            return end;
        const double share = std::min(1.0, std::chrono::duration<double>(Clock::now() - begin) / time);
        m_report.showBar(stage.startPercent + share * (stage.endPercent - stage.startPercent));
    }
    return {};
}

ScenarioPlayer::StepEnd ScenarioPlayer::pause(Clock::duration time) {
    const auto end = Clock::now() + time;
    while (Clock::now() < end) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        const auto reply = awaitReply(left);
        if (reply && isExit(*reply)) {
            m_report.note("The application has ended.");
            return Ending::Otherwise;
        }
    }
    return {};
}

ScenarioPlayer::StepEnd ScenarioPlayer::connectACPower() {
    if (!m_link.awaitTaken(m_options.patience))
        return Ending::NoAnswer;
    m_report.note("The printer runs on battery: AC power is not connected.");
    // Who cancels meanwhile has decided: that is for the step that waits for the decision.
    m_early = awaitReply(std::chrono::ceil<std::chrono::milliseconds>(scaled(kOnBatterySeconds)));
    if (!m_early) {
        m_firmware->setACConnected(true);
        m_report.note("AC power is connected.");
    }
    return {};
}

ScenarioPlayer::StepEnd ScenarioPlayer::awaitDecision(std::uint8_t expected) {
    m_report.note("Waiting for the user's decision.");
    while (const auto reply = awaitReply(m_options.patience)) {
        if (reply->kind != UpgraderReply::Kind::Command)
            continue;
        if (reply->command == expected)
            return {};
        if (reply->command == CommandStartUpgrade || reply->command == CommandCancel) {
            m_report.note("The user decided otherwise.");
            if (const StepEnd end = sendAll({MsgExitUi}))
                return end;
            const StepEnd end = awaitCommand(CommandUiExiting);
            return end ? end : Ending::Otherwise;
        }
        if (isExit(*reply))
            return Ending::Otherwise;
    }
    return Ending::NoAnswer;
}

ScenarioPlayer::StepEnd ScenarioPlayer::awaitCommand(std::uint8_t expected) {
    m_report.note("Waiting for " + std::string(messageRule(expected).name) + '.');
    while (const auto reply = awaitReply(m_options.patience)) {
        if (reply->kind == UpgraderReply::Kind::Command && reply->command == expected)
            return {};
        if (isExit(*reply))
            return Ending::Otherwise;
    }
    return Ending::NoAnswer;
}

ScenarioPlayer::StepEnd ScenarioPlayer::awaitAcknowledgement() {
    // A command of the application's other thread can overtake the acknowledgement; the next step wants it.
    std::optional<UpgraderReply> early;
    while (const auto reply = awaitReply(m_options.patience)) {
        if (reply->kind == UpgraderReply::Kind::Acknowledgement) {
            m_early = early;
            return {};
        }
        early = reply;
    }
    return Ending::NoAnswer;
}

std::optional<UpgraderReply> ScenarioPlayer::awaitReply(std::chrono::milliseconds patience) {
    if (m_early)
        return std::exchange(m_early, std::nullopt);
    const auto reply = m_link.awaitReply(patience);
    if (reply && reply->kind == UpgraderReply::Kind::Command)
        m_report.received(reply->command);
    else if (reply)
        m_report.acknowledged();
    return reply;
}

void ScenarioPlayer::follow(std::chrono::milliseconds time) {
    const StepEnd ended = pause(time);
    static_cast<void>(ended); // either way there is nothing more to follow
}

ScenarioPlayer::Clock::duration ScenarioPlayer::scaled(double seconds) const {
    return std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(seconds / m_options.speed));
}
