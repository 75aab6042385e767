import QtQuick 2.0
import QtQuick.Window 2.2
import QtQml 2.2
import KCControls 1.0
import KCScreens 1.0
import KQUpgradeInterface 1.0

KCMain {
    id: upgradeUI

    color: KCStyle.mainWindowBackgroundWhenPopup
    flags: Qt.platform.os === "windows"
           ? Qt.Window
           : Qt.FramelessWindowHint | Qt.CustomizeWindowHint | Qt.WindowStaysOnTopHint | Qt.X11BypassWindowManagerHint

    PopupArea {
        id: mainHandler

        // Indexed by QUpgradeModule.upgradeInProg.
        readonly property var inProgState: [
            { text: qsTr("Initiating the software upgrade..."), percent: 1 },
            { text: qsTr("Preparing for the software upgrade..."), percent: 3 },
            { text: qsTr("Copying the package..."), percent: 5 },
            { text: qsTr("Validating the package..."), percent: 45 },
            { text: qsTr("Validating the configuration..."), percent: 47 },
            { text: qsTr("Backingup the current version..."), percent: 49 },
            { text: qsTr("Ending other applications..."), percent: 50 },
            { text: qsTr("Extracting the package..."), percent: 52 },
            { text: qsTr("Verifying software upgrade..."), percent: 90 },
            { text: qsTr("Executing post upgrade activities..."), percent: 95 }
        ]

        readonly property bool hasScreen: QUpgradeModule.upgradeState !== KQUpgradeInterface.StateIdle
                                          && QUpgradeModule.upgradeState !== KQUpgradeInterface.StateExitUi

        function updateWindow() {
            upgradeUI.visible = hasScreen
        }

        // Some platforms draw the first frame while the window is being shown. Qt.callLater() shows it only after the
        // state has set everything that the frame contains.
        onHasScreenChanged: hasScreen ? Qt.callLater(updateWindow) : updateWindow()

        objectName: "mainHandler"
        state: "idle"
        onCloseBtnClicked: QUpgradeModule.userClickedClose()

        ConnectACPower {
            id: connectACPower

            objectName: "connectACPower"
            anchors.fill: parent
            visible: false
            onCancelPressed: QUpgradeModule.userClickedCancel()
        }

        UpgradeFileFound {
            id: upgradeFileFound

            objectName: "upgradeFileFound"
            anchors.fill: parent
            visible: false
            onUpgradePressed: QUpgradeModule.userClickedUpgrade()
            onCancelPressed: QUpgradeModule.userClickedCancel()
        }

        UpgradeInProgress {
            id: upgradeInProgress

            objectName: "upgradeInProgress"
            anchors.fill: parent
            visible: false
            packageSize: QUpgradeModule.packageSize
            upgradeStage: mainHandler.inProgState[QUpgradeModule.upgradeInProg].text
            upgradePercent: mainHandler.inProgState[QUpgradeModule.upgradeInProg].percent
            copyStartPercent: mainHandler.inProgState[KQUpgradeInterface.ExtractPkgTemp].percent
            copyEndPercent: mainHandler.inProgState[KQUpgradeInterface.ValidatingPkg].percent
            extractStartPercent: mainHandler.inProgState[KQUpgradeInterface.ExtractingPkg].percent
            extractEndPercent: mainHandler.inProgState[KQUpgradeInterface.VerifyingFile].percent
        }

        UpgradeCompleted {
            id: upgradeCompleted

            objectName: "upgradeCompleted"
            anchors.fill: parent
            visible: false
            newVersion: QUpgradeModule.packageVersion
            onRebootNow: QUpgradeModule.rebootPrinter()
        }

        UpgradeCompletedNoReboot {
            id: upgradeCompletedNoReboot

            objectName: "upgradeCompletedNoReboot"
            anchors.fill: parent
            visible: false
            onOkPressed: QUpgradeModule.userClickedOkNoReboot()
        }

        UpgradeFileCorrupted {
            id: upgradeFileCorrupted

            objectName: "upgradeFileCorrupted"
            anchors.fill: parent
            visible: false
            onOkPressed: QUpgradeModule.userClickedOK()
        }

        UpgradeFileNotFound {
            id: upgradeFileNotFound

            objectName: "upgradeFileNotFound"
            anchors.fill: parent
            visible: false
            onOkPressed: QUpgradeModule.userClickedOK()
        }

        UpgradeFileIncompatible {
            id: upgradeFileIncompatible

            objectName: "upgradeFileIncompatible"
            anchors.fill: parent
            visible: false
            onOkPressed: QUpgradeModule.userClickedOK()
        }

        UpgradeFailed {
            id: upgradeFailed

            objectName: "upgradeFailed"
            anchors.fill: parent
            visible: false
            onOkPressed: QUpgradeModule.userClickedOK()
        }

        SystemIntegrityFailed {
            id: systemIntegrityFailed

            objectName: "systemIntegrityFailed"
            anchors.fill: parent
            visible: false
            version: QUpgradeModule.printerVersion
            enableRepair: QUpgradeModule.enableRepair
            onRepairPressed: QUpgradeModule.userClickedRepair()
        }

        NextBootSafe {
            id: nextBootSafe

            objectName: "nextBootSafe"
            anchors.fill: parent
            visible: false
            onRebootNow: QUpgradeModule.rebootPrinter()
        }

        states: [
            State { name: "idle" },
            State {
                name: "connectACPower"
                when: QUpgradeModule.upgradeState === KQUpgradeInterface.StateConnectACPower

                PropertyChanges {
                    target: mainHandler
                    enableClose: true
                    header: qsTr("Upgrade Available")
                    iconType: KCSettings.iconAlert
                }
                PropertyChanges { target: connectACPower; visible: true }
            },
            State {
                name: "upgradeFileFound"
                when: QUpgradeModule.upgradeState === KQUpgradeInterface.StateUpgradeFileFound

                PropertyChanges {
                    target: mainHandler
                    enableClose: true
                    header: qsTr("Upgrade Available")
                    iconType: KCSettings.iconQuestion
                }
                PropertyChanges { target: upgradeFileFound; visible: true }
            },
            State {
                name: "upgradeInProgress"
                when: QUpgradeModule.upgradeState === KQUpgradeInterface.StateUpgradeInProgress

                PropertyChanges {
                    target: mainHandler
                    enableClose: false
                    header: qsTr("Upgrade")
                    iconType: KCSettings.iconInprogress
                }
                PropertyChanges { target: upgradeInProgress; visible: true }
            },
            State {
                name: "upgradeCompleted"
                when: QUpgradeModule.upgradeState === KQUpgradeInterface.StateUpgradeCompleted

                PropertyChanges {
                    target: mainHandler
                    enableClose: false
                    header: qsTr("Upgrade")
                    iconType: KCSettings.iconSuccess
                }
                PropertyChanges { target: upgradeCompleted; visible: true; runTimer: true }
            },
            State {
                name: "upgradeCompletedNoReboot"
                when: QUpgradeModule.upgradeState === KQUpgradeInterface.StateUpgradeCompletedNoReboot

                PropertyChanges {
                    target: mainHandler
                    enableClose: false
                    header: qsTr("Upgrade")
                    iconType: KCSettings.iconSuccess
                }
                PropertyChanges { target: upgradeCompletedNoReboot; visible: true }
            },
            State {
                name: "upgradeFileCorrupted"
                when: QUpgradeModule.upgradeState === KQUpgradeInterface.StateUpgradeFileCorrupted

                PropertyChanges {
                    target: mainHandler
                    enableClose: true
                    header: qsTr("Upgrade Failed")
                    iconType: KCSettings.iconAlert
                }
                PropertyChanges { target: upgradeFileCorrupted; visible: true }
            },
            State {
                name: "upgradeFailed"
                when: QUpgradeModule.upgradeState === KQUpgradeInterface.StateUpgradeFailed

                PropertyChanges {
                    target: mainHandler
                    enableClose: true
                    header: qsTr("Upgrade Failed")
                    iconType: KCSettings.iconAlert
                }
                PropertyChanges { target: upgradeFailed; visible: true }
            },
            State {
                name: "upgradeFileNotFound"
                when: QUpgradeModule.upgradeState === KQUpgradeInterface.StateUpgradeFileNotFound

                PropertyChanges {
                    target: mainHandler
                    enableClose: true
                    header: qsTr("No Upgrade File Found")
                    iconType: KCSettings.iconAlert
                }
                PropertyChanges { target: upgradeFileNotFound; visible: true }
            },
            State {
                name: "upgradeFileIncompatible"
                when: QUpgradeModule.upgradeState === KQUpgradeInterface.StateUpgradeFileIncompatible

                PropertyChanges {
                    target: mainHandler
                    enableClose: true
                    header: qsTr("Incompatible Upgrade File")
                    iconType: KCSettings.iconAlert
                }
                PropertyChanges { target: upgradeFileIncompatible; visible: true }
            },
            State {
                name: "nextBootSafe"
                when: QUpgradeModule.upgradeState === KQUpgradeInterface.StateNextBootSafe

                PropertyChanges {
                    target: mainHandler
                    enableClose: false
                    header: qsTr("Upgrade Failed")
                    iconType: KCSettings.iconAlert
                }
                PropertyChanges { target: nextBootSafe; visible: true }
            },
            State {
                name: "sysIntegrityFail"
                when: QUpgradeModule.upgradeState === KQUpgradeInterface.StateSysIntegrityFailed

                PropertyChanges {
                    target: mainHandler
                    enableClose: false
                    header: qsTr("Error Occurred")
                    iconType: KCSettings.iconError
                }
                PropertyChanges { target: systemIntegrityFailed; visible: true }
            },
            State {
                name: "exitUi"
                when: QUpgradeModule.upgradeState === KQUpgradeInterface.StateExitUi

                StateChangeScript {
                    script: {
                        QUpgradeModule.uiExiting()
                        Qt.quit()
                    }
                }
            }
        ]
    }
}
