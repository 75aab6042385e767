import QtQuick 2.0
import QtQuick.Window 2.2

Window {
    width: 800
    height: 480
    visible: true

    Text {
        anchors.centerIn: parent
        text: "Hello"
    }
}
