import QtQuick 2.0
import KCControls 1.0

// The cross in the popup's header. The whole square takes the touch.
Item {
    id: button

    signal clicked()

    Accessible.role: Accessible.Button
    Accessible.name: qsTr("Close")
    Accessible.onPressAction: if (visible && enabled) clicked()

    Rectangle {
        anchors.fill: parent
        anchors.margins: KCStyle.radius
        radius: KCStyle.radius
        color: KCStyle.buttonPressed
        visible: touchArea.pressed && touchArea.containsMouse
    }

    Rectangle {
        id: stroke

        anchors.centerIn: parent
        width: KCStyle.closeCrossSize
        height: KCStyle.closeCrossThickness
        radius: height / 2
        rotation: 45
        antialiasing: true
        color: button.enabled ? KCStyle.text : KCStyle.line
    }

    Rectangle {
        anchors.fill: stroke
        radius: stroke.radius
        rotation: -stroke.rotation
        antialiasing: true
        color: stroke.color
    }

    MouseArea {
        id: touchArea

        anchors.fill: parent
        onClicked: button.clicked()
    }
}
