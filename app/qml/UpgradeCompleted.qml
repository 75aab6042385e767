import QtQuick 2.0
import QtQml 2.2
import KCControls 1.0

Item {
    id: screen

    property string newVersion
    property bool runTimer: false
    readonly property int rowMargin: KCSize.sizedHeight(6, 12)

    signal rebootNow()

    // The text comes from outside: line breaks in it would push the countdown off the popup.
    function oneLine(text) {
        return text.replace(/[\u0000-\u001f\u0085\u2028\u2029]+/g, " ")
    }

    KCPopupBodyText {
        id: successText

        objectName: "bodyText"
        text: qsTr("Upgrade to Version %1 is successful!").arg(oneLine(screen.newVersion))
    }

    KCProgressBar {
        id: progressBar

        objectName: "progressBar"
        anchors.top: successText.bottom
        anchors.topMargin: screen.rowMargin
        value: 100
    }

    KCPopupBodyText {
        objectName: "countdownText"
        y: progressBar.y + progressBar.height + screen.rowMargin
        text: qsTr("Printer will reboot in %1 seconds...").arg(countdownTimer.count)
    }

    KCButton {
        id: rebootButton

        objectName: "rebootButton"
        width: KCSize.sizedWidth(98, 172)
        fixedHeight: false
        textToDisplay: qsTr("Reboot Now")
        focus: screen.visible
        onClicked: screen.rebootNow()
        Keys.onReturnPressed: if (!event.isAutoRepeat) clicked()
        Keys.onEnterPressed: if (!event.isAutoRepeat) clicked()
    }

    Timer {
        id: countdownTimer

        property int count: 15

        objectName: "countdownTimer"
        interval: 1000
        repeat: true
        running: screen.runTimer && count !== 0
        onTriggered: {
            count -= 1
            if (count === 0)
                screen.rebootNow()
        }
    }
}
