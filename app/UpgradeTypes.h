#pragma once

#include <cstdint>

/// What the link holds to be on the screen.
enum class UpgradeDisplay : std::uint8_t {
    DisplayFileFound = 0,
    DisplayInProgress = 1,
    DisplayCompleted = 2,
    DisplayFileCorrupted = 3,
    DisplayFileIncompatible = 4,
    DisplayFailed = 5,
    DisplaySysIntegrityFailed = 6,
    DisplayFileNotFound = 7,
    DisplayNextBootSafe = 8,
    DisplayIdle = 9,
    DisplayCompletedNoReboot = 10,
    DisplayConnectACPower = 11,
    DisplayExitUi = 12,
};

/// The stages of a running upgrade, with the values of their message codes.
enum class UpgradeProgressMsg : std::uint8_t {
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
};

/// What the user decided.
enum class UserAction : std::uint8_t {
    ActionUpgrade = 0,
    ActionCancel = 1,
    ActionRepair = 2,
    ActionOk = 3,
    ActionOkNoReboot = 4,
    ActionClose = 5,
    ActionReboot = 6,
    ActionUiExiting = 7,
};
