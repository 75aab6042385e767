import QtQuick 2.0
import QtQml 2.2
import KCControls 1.0

Item {
    id: screen

    // An int would not hold the upper half of the sizes.
    property real packageSize: 0
    property string upgradeStage
    property int upgradePercent: 0
    property int copyStartPercent: 0
    property int copyEndPercent: 0
    property int extractStartPercent: 0
    property int extractEndPercent: 0

    readonly property int refPackageSize: 15500000
    readonly property int refCopySteps: 5
    readonly property int refExtractSteps: 6
    readonly property int copySteps: Math.floor(refCopySteps * packageSize / refPackageSize)
    readonly property int extractSteps: Math.floor(refExtractSteps * packageSize / refPackageSize)

    readonly property int stageGap: 2

    // Fills a stage that no message divides.
    component StageTimer: Timer {
        property int startPercent: 0
        property int endPercent: 0
        property int steps: 0
        property Item bar: null

        readonly property real increment: (endPercent - startPercent) / steps
        property real realPercent: startPercent

        function rewind() {
            realPercent = startPercent
        }

        interval: 1000
        repeat: true
        running: bar !== null && bar.value >= startPercent && bar.value < endPercent
        onTriggered: {
            realPercent = Math.min(realPercent + increment, endPercent)
            if (bar.value < endPercent)
                bar.value = Math.round(realPercent)
        }
    }

    onUpgradePercentChanged: progressBar.value = upgradePercent
    onVisibleChanged: {
        if (!visible) {
            copyTimer.rewind()
            extractTimer.rewind()
        }
    }

    KCPopupBodyText {
        objectName: "progressText"
        text: qsTr("Upgrade Progress: %1%").arg(progressBar.value)
    }

    KCProgressBar {
        id: progressBar

        objectName: "progressBar"
    }

    KCPopupBodyText {
        objectName: "stageText"
        x: progressBar.x
        y: progressBar.y + progressBar.height + screen.stageGap
        text: screen.upgradeStage
        font.pointSize: KCSize.sizedHeight(7, 12)
    }

    KCPopupBodyText {
        objectName: "noteText"
        y: KCSize.sizedHeight(130, 197)
        text: qsTr("Note: This may take a few minutes. Please do not power off your printer.")
    }

    StageTimer {
        id: copyTimer

        objectName: "copyTimer"
        bar: progressBar
        startPercent: screen.copyStartPercent
        endPercent: screen.copyEndPercent
        steps: screen.copySteps
    }

    StageTimer {
        id: extractTimer

        objectName: "extractTimer"
        bar: progressBar
        startPercent: screen.extractStartPercent
        endPercent: screen.extractEndPercent
        steps: screen.extractSteps
    }
}
