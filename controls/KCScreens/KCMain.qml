import QtQuick 2.0
import QtQuick.Window 2.2
import KCControls 1.0

// The one window of an application: it fills the display, comes up hidden, and cannot be closed by the user.
Window {
    id: main

    width: Screen.width
    height: Screen.height
    visible: false
    title: qsTr("Upgrade UI")

    // A window that bypasses the window manager gets the keyboard only on request, and only once it is on the display.
    onVisibleChanged: if (visible) Qt.callLater(requestActivate)
    onClosing: close.accepted = false

    // Requests the keyboard at each press anywhere, and leaves the press to the items below.
    MouseArea {
        anchors.fill: parent
        z: 1
        onPressed: {
            main.requestActivate()
            mouse.accepted = false
        }
    }

    Binding {
        target: KCSize
        property: "displayWidth"
        value: main.width
    }
}
