import QtQuick 2.0
import QtQml 2.2
import KCControls 1.0

Item {
    id: screen

    signal rebootNow()

    KCPopupBodyText {
        objectName: "bodyText"
        text: qsTr("An error has occurred during upgrade and the printer needs to reboot in recovery mode.")
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
}
