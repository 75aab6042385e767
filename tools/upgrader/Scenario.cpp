#include "tools/upgrader/Scenario.h"

#include "app/UpgradeMessage.h"

#include <algorithm>
#include <array>

namespace {

using enum ScenarioStep::Action;

constexpr std::array kStages{
    UpgradeStage{ProgressInitiated, "Initiating", 1, 3, 1},
    UpgradeStage{ProgressPreparingFolderTemp, "Preparing the temporary folder", 3, 5, 1},
    UpgradeStage{ProgressExtractPkgTemp, "Copying the package", 5, 45, 5, true},
    UpgradeStage{ProgressValidatingPkg, "Validating the package", 45, 46, 1},
    UpgradeStage{ProgressValidatingPkgNext, "Validating the package, second pass", 46, 47, 1},
    UpgradeStage{ProgressValidatingCfg, "Validating the configuration", 47, 49, 1},
    UpgradeStage{ProgressBackingupCurrent, "Backing up the current version", 49, 50, 1},
    UpgradeStage{ProgressEndingOtherAppsAndDlls, "Ending other applications", 50, 52, 1},
    UpgradeStage{ProgressExtractingPkg, "Extracting the package", 52, 90, 6, true},
    UpgradeStage{ProgressVerifyingFile, "Verifying the files", 90, 95, 2},
    UpgradeStage{ProgressFinalOperation, "Final operations", 95, 100, 2},
};

constexpr ScenarioStep kOffer{Send, MsgFileFound};
constexpr ScenarioStep kUserUpgrades{AwaitDecision, CommandStartUpgrade};
constexpr ScenarioStep kUserProceeds{AwaitCommand, CommandProceed};
constexpr ScenarioStep kApplicationEnds{AwaitCommand, CommandUiExiting};

constexpr ScenarioStep stages(std::uint8_t first, std::uint8_t last) { return {Stages, first, last}; }

constexpr ScenarioStep kAllStages = stages(ProgressInitiated, ProgressFinalOperation);

// A printer that goes down closes its applications.
constexpr ScenarioStep kPrinterGoesDown{RequestClose};

constexpr std::array kSuccess{
    ScenarioStep{SendInfo},           kOffer,        kUserUpgrades,    kAllStages,
    ScenarioStep{Send, MsgCompleted}, kUserProceeds, kPrinterGoesDown, kApplicationEnds};
constexpr std::array kBattery{ScenarioStep{SendInfo}, kOffer,           ScenarioStep{ConnectACPower},
                              kUserUpgrades,          kAllStages,       ScenarioStep{Send, MsgCompleted},
                              kUserProceeds,          kPrinterGoesDown, kApplicationEnds};
constexpr std::array kSuccessNoReboot{
    ScenarioStep{SendInfo}, kOffer, kUserUpgrades, kAllStages, ScenarioStep{Send, MsgCompletedNoReboot},
    kApplicationEnds};
constexpr std::array kCorrupted{ScenarioStep{SendInfo},
                                kOffer,
                                kUserUpgrades,
                                stages(ProgressInitiated, ProgressValidatingPkg),
                                ScenarioStep{Send, MsgFileCorrupted},
                                kUserProceeds};
constexpr std::array kNotFound{ScenarioStep{Send, MsgFileNotFound}, kUserProceeds};
constexpr std::array kIncompatible{ScenarioStep{SendInfo},
                                   kOffer,
                                   kUserUpgrades,
                                   stages(ProgressInitiated, ProgressValidatingCfg),
                                   ScenarioStep{Send, MsgFileIncompatible},
                                   kUserProceeds};
constexpr std::array kFailed{ScenarioStep{SendInfo},
                             kOffer,
                             kUserUpgrades,
                             stages(ProgressInitiated, ProgressExtractingPkg),
                             ScenarioStep{Send, MsgFailed},
                             kUserProceeds};
constexpr std::array kRecoveryReboot{ScenarioStep{SendInfo},
                                     kOffer,
                                     kUserUpgrades,
                                     stages(ProgressInitiated, ProgressVerifyingFile),
                                     ScenarioStep{Send, MsgNextBootSafe},
                                     kUserProceeds,
                                     kPrinterGoesDown,
                                     kApplicationEnds};
constexpr std::array kSystemIntegrity{ScenarioStep{SendInfo},
                                      ScenarioStep{Send, MsgSysIntegrityFailed},
                                      ScenarioStep{Pause},
                                      kOffer,
                                      kUserUpgrades,
                                      kAllStages,
                                      ScenarioStep{Send, MsgCompleted},
                                      kUserProceeds,
                                      kPrinterGoesDown,
                                      kApplicationEnds};
constexpr std::array kCancelled{ScenarioStep{SendInfo}, kOffer, ScenarioStep{AwaitDecision, CommandCancel},
                                ScenarioStep{Send, MsgExitUi}, kApplicationEnds};
constexpr std::array kCloseRequest{ScenarioStep{SendInfo}, kOffer,
                                   kUserUpgrades,          stages(ProgressInitiated, ProgressValidatingPkg),
                                   kPrinterGoesDown,       kApplicationEnds};
constexpr std::array kStartConfirm{ScenarioStep{SendInfo},
                                   ScenarioStep{ConfirmStart},
                                   stages(ProgressExtractingPkg, ProgressFinalOperation),
                                   ScenarioStep{Send, MsgCompleted},
                                   kUserProceeds,
                                   kPrinterGoesDown,
                                   kApplicationEnds};

constexpr std::array kScenarios{
    Scenario{"success", "file found, upgraded, reboot", kSuccess},
    Scenario{"battery", "on battery: AC power is asked for and connected, then as \"success\"", kBattery,
             true},
    Scenario{"success-no-reboot", "file found, upgraded, no reboot needed", kSuccessNoReboot},
    Scenario{"corrupted", "the package turns out to be corrupted", kCorrupted},
    Scenario{"not-found", "no upgrade file on the drive", kNotFound},
    Scenario{"incompatible", "the package is for another device or region", kIncompatible},
    Scenario{"failed", "the upgrade fails half-way", kFailed},
    Scenario{"recovery-reboot", "the upgrade fails so that the printer must reboot in recovery mode",
             kRecoveryReboot},
    Scenario{"system-integrity", "system files are damaged: a repair with a package found later",
             kSystemIntegrity},
    Scenario{"cancelled", "the user cancels the offered upgrade", kCancelled},
    Scenario{"close-request", "the upgrader asks the application to close in the middle", kCloseRequest},
    Scenario{"start-confirm", "the upgrader confirms a start: the application joins a running upgrade",
             kStartConfirm},
};

} // namespace

std::span<const Scenario> scenarios() { return kScenarios; }

const Scenario* findScenario(std::string_view name) {
    const auto* found = std::ranges::find(kScenarios, name, &Scenario::name);
    return found == kScenarios.end() ? nullptr : found;
}

std::span<const UpgradeStage> upgradeStages(std::uint8_t firstCode, std::uint8_t lastCode) {
    const auto* first = std::ranges::lower_bound(kStages, firstCode, {}, &UpgradeStage::code);
    const auto* last = std::ranges::upper_bound(kStages, lastCode, {}, &UpgradeStage::code);
    return {first, last};
}
