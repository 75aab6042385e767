import QtQuick 2.0
import QtQml 2.2
import KCControls 1.0

Item {
    id: screen

    signal upgradePressed()
    signal cancelPressed()

    KCPopupBodyText {
        objectName: "bodyText"
        text: qsTr("Upgrade file found. Upgrade now?\n\nNote: All current and queued print jobs will be cancelled once upgrade starts. This may take a few minutes. Please do not power off your printer.")
              + " " + qsTr("Remove USB drive after the upgrade completes.")
    }

    Row {
        id: buttonRow

        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: spacing
        spacing: KCSize.sizedHeight(12, 24)
        layoutDirection: Qt.RightToLeft

        KCButton {
            objectName: "cancelButton"
            applyAnchors: false
            width: upgradeButton.width
            height: upgradeButton.height
            textToDisplay: qsTr("Cancel")
            onClicked: screen.cancelPressed()
        }

        KCButton {
            id: upgradeButton

            objectName: "upgradeButton"
            applyAnchors: false
            width: KCSize.sizedWidth(86, 150)
            fixedHeight: false
            textToDisplay: qsTr("Upgrade")
            focus: screen.visible
            onClicked: screen.upgradePressed()
            Keys.onReturnPressed: if (!event.isAutoRepeat) clicked()
            Keys.onEnterPressed: if (!event.isAutoRepeat) clicked()
        }
    }
}
