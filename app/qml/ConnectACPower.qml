import QtQuick 2.0
import QtQml 2.2
import KCControls 1.0

Item {
    id: screen

    signal cancelPressed()

    KCPopupBodyText {
        objectName: "bodyText"
        text: qsTr("Upgrade file found. Connect AC power to initiate upgrade.\n\nNote: Do not unplug AC power until the upgrade is complete.")
    }

    KCButton {
        id: cancelButton

        objectName: "cancelButton"
        textToDisplay: qsTr("Cancel")
        focus: screen.visible
        onClicked: screen.cancelPressed()
        Keys.onReturnPressed: if (!event.isAutoRepeat) clicked()
        Keys.onEnterPressed: if (!event.isAutoRepeat) clicked()
    }
}
