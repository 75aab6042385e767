#pragma once

#include "app/UpgradeTypes.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

/// One code space for the ring (upgrader to application) and for `uiCommand` (application to upgrader). Where
/// several codes mean the same to the application, the name stands for the first; the table below lists them
/// all.
enum UpgradeMessage : std::uint8_t {
    CommandStartUpgrade = 1,
    CommandCancel = 2,
    MsgExitUi = 3,
    MsgFileFound = 4,
    ProgressInitiated = 5,
    ProgressPreparingFolderTemp = 6,
    ProgressExtractPkgTemp = 7,
    ProgressValidatingPkg = 8,
    ProgressValidatingPkgNext = 9,
    ProgressValidatingCfg = 10,
    ProgressBackingupCurrent = 11,
    ProgressEndingOtherAppsAndDlls = 12,
    ProgressExtractingPkg = 13,
    ProgressVerifyingFile = 14,
    ProgressFinalOperation = 15,
    MsgCompleted = 16,
    MsgFileNotFound = 17,
    MsgFailed = 18,
    MsgFileCorrupted = 21,
    MsgFileIncompatible = 22,
    MsgNextBootSafe = 24,
    MsgSysIntegrityFailed = 28,
    MsgPrinterInfo = 30,
    MsgPackageInfo = 31,
    MsgRequestClose = 32,
    CommandProceed = 33,
    CommandUiExiting = 34,
    MsgCompletedNoReboot = 35,
};

/// What of the record is read, and given to its handler, before a code is handled.
enum class MessagePayload : std::uint8_t { None, PrinterInfo, PackageInfo, PackageSize };

/// What a code does to the display machine.
enum class MessageEffect : std::uint8_t {
    Nothing,
    Announce,    ///< The display stays and is announced.
    Show,        ///< The display of the rule, announced.
    Progress,    ///< The display of the rule, then the progress handler, then announced.
    FileFound,   ///< Depends on the display.
    LatchRepair, ///< As Show; from now on only a repair leads out.
};

struct MessageRule {
    std::uint8_t code = 0;
    std::string_view name; ///< Empty for a code without one.
    MessageEffect effect = MessageEffect::Nothing;
    UpgradeDisplay display = UpgradeDisplay::DisplayIdle; ///< Where the effect shows one.
    MessagePayload payload = MessagePayload::None;
};

constexpr std::size_t kMessageCodes = 36;

/// Every known code, at its own index: what the application does with it, and what it is called.
extern const std::array<MessageRule, kMessageCodes> kMessageRules;

/// Returns the rule of @p code; for an unknown code one without name and effect. Thread: any.
const MessageRule& messageRule(std::uint8_t code);

/// Returns the first code that is called @p name. Thread: any.
std::optional<std::uint8_t> messageCode(std::string_view name);
