import QtQuick 2.0
import QtQuick.Window 2.2
import KCControls 1.0

// The one window of an application: it fills the display, comes up hidden, and cannot be closed by the user.
Window {
    id: main

    width: Screen.width
    height: Screen.height
    visible: false
    title: "Upgrade UI"

    // No window manager gives such a window the keyboard. It can be asked for only once the window is on the display.
    onVisibleChanged: if (visible) Qt.callLater(requestActivate)
    onClosing: close.accepted = false

    Binding {
        target: KCSize
        property: "displayWidth"
        value: main.width
    }
}
