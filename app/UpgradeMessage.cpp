#include "app/UpgradeMessage.h"

#include <algorithm>

using enum MessageEffect;
using enum UpgradeDisplay;

constexpr std::array<MessageRule, kMessageCodes> kMessageRules{{
    {0, "", Nothing},
    {1, "CommandStartUpgrade", Announce},
    {2, "CommandCancel", Announce},
    {3, "MsgExitUi", Show, DisplayExitUi},
    {4, "MsgFileFound", FileFound},
    {5, "ProgressInitiated", Progress, DisplayInProgress},
    {6, "ProgressPreparingFolderTemp", Progress, DisplayInProgress, MessagePayload::PackageSize},
    {7, "ProgressExtractPkgTemp", Progress, DisplayInProgress},
    {8, "ProgressValidatingPkg", Progress, DisplayInProgress},
    {9, "ProgressValidatingPkgNext", Progress, DisplayInProgress},
    {10, "ProgressValidatingCfg", Progress, DisplayInProgress},
    {11, "ProgressBackingupCurrent", Progress, DisplayInProgress},
    {12, "ProgressEndingOtherAppsAndDlls", Progress, DisplayInProgress},
    {13, "ProgressExtractingPkg", Progress, DisplayInProgress},
    {14, "ProgressVerifyingFile", Progress, DisplayInProgress},
    {15, "ProgressFinalOperation", Progress, DisplayInProgress},
    {16, "MsgCompleted", Show, DisplayCompleted},
    {17, "MsgFileNotFound", Show, DisplayFileNotFound},
    {18, "MsgFailed", Show, DisplayFailed},
    {19, "MsgFailed", Show, DisplayFailed},
    {20, "MsgFileNotFound", Show, DisplayFileNotFound},
    {21, "MsgFileCorrupted", Show, DisplayFileCorrupted},
    {22, "MsgFileIncompatible", Show, DisplayFileIncompatible},
    {23, "MsgFailed", Show, DisplayFailed},
    {24, "MsgNextBootSafe", Show, DisplayNextBootSafe},
    {25, "MsgNextBootSafe", Show, DisplayNextBootSafe},
    {26, "MsgNextBootSafe", Show, DisplayNextBootSafe},
    {27, "MsgNextBootSafe", Show, DisplayNextBootSafe},
    {28, "MsgSysIntegrityFailed", LatchRepair, DisplaySysIntegrityFailed},
    {29, "MsgFileIncompatible", Show, DisplayFileIncompatible},
    {30, "MsgPrinterInfo", Nothing, DisplayIdle, MessagePayload::PrinterInfo},
    {31, "MsgPackageInfo", Nothing, DisplayIdle, MessagePayload::PackageInfo},
    {32, "MsgRequestClose", Show, DisplayExitUi},
    {33, "CommandProceed", Announce},
    {34, "CommandUiExiting", Announce},
    {35, "MsgCompletedNoReboot", Show, DisplayCompletedNoReboot},
}};

static_assert(std::ranges::all_of(kMessageRules,
                                  [](const MessageRule& rule) { return &rule == &kMessageRules[rule.code]; }),
              "a rule stands at the index of its code");

const MessageRule& messageRule(std::uint8_t code) {
    static constexpr MessageRule kUnknown{};
    return code < kMessageRules.size() ? kMessageRules[code] : kUnknown;
}

std::optional<std::uint8_t> messageCode(std::string_view name) {
    const auto* found = std::ranges::find(kMessageRules, name, &MessageRule::name);
    if (name.empty() || found == kMessageRules.end())
        return {};
    return found->code;
}
