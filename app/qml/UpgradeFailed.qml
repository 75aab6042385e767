import QtQuick 2.0
import QtQml 2.2
import KCControls 1.0

Item {
    id: screen

    signal okPressed()

    KCPopupBodyText {
        objectName: "bodyText"
        text: qsTr("An error has occurred during upgrade. Re-insert USB flash drive to try again.")
    }

    KCButton {
        id: okButton

        objectName: "okButton"
        textToDisplay: qsTr("OK")
        focus: screen.visible
        onClicked: screen.okPressed()
        Keys.onReturnPressed: if (!event.isAutoRepeat) clicked()
        Keys.onEnterPressed: if (!event.isAutoRepeat) clicked()
    }
}
