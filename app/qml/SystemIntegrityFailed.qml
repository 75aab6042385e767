import QtQuick 2.0
import QtQml 2.2
import KCControls 1.0

Item {
    id: screen

    property string version
    property bool enableRepair: false

    signal repairPressed()

    KCPopupBodyText {
        objectName: "bodyText"
        y: KCSize.sizedHeight(57, 85)
        text: qsTr("Printer unable to boot due to corrupted system files. Please insert a USB flash drive with valid upgrade file to start repair.")
    }

    KCButton {
        id: repairButton

        objectName: "repairButton"
        enabled: screen.enableRepair
        textToDisplay: qsTr("Repair")
        focus: screen.visible
        onClicked: screen.repairPressed()
        Keys.onReturnPressed: if (!event.isAutoRepeat) clicked()
        Keys.onEnterPressed: if (!event.isAutoRepeat) clicked()
    }
}
