import QtQuick 2.0
import KCControls 1.0

// The popup frame in the middle of the window. Children get the whole frame; the header lies over its top.
Rectangle {
    id: popup

    property string header
    property int iconType: KCSettings.iconNone
    property bool enableClose: false

    default property alias content: contentArea.data

    signal closeBtnClicked()

    anchors.centerIn: parent
    width: KCStyle.popupWidth
    height: KCStyle.popupHeight
    radius: KCStyle.radius
    color: KCStyle.popupBackground

    Accessible.role: Accessible.Dialog
    Accessible.name: header

    Rectangle {
        id: headerBar

        width: parent.width
        height: KCStyle.headerHeight
        radius: popup.radius
        color: KCStyle.headerBackground

        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: parent.radius
            color: parent.color
        }

        Rectangle {
            anchors.top: parent.bottom
            width: parent.width
            height: KCStyle.lineWidth
            color: KCStyle.line
        }
    }

    Item {
        id: contentArea

        anchors.fill: parent
    }

    PopupIcon {
        id: icon

        x: KCStyle.margin
        anchors.verticalCenter: headerBar.verticalCenter
        width: iconType === KCSettings.iconNone ? 0 : KCStyle.iconSize
        height: KCStyle.iconSize
        iconType: popup.iconType
    }

    Text {
        objectName: "headerText"
        anchors.left: icon.right
        anchors.leftMargin: KCStyle.spacing
        anchors.right: closeButton.left
        anchors.verticalCenter: headerBar.verticalCenter
        height: headerBar.height - 2 * KCStyle.headerTextPadding
        verticalAlignment: Text.AlignVCenter
        text: popup.header
        color: KCStyle.text
        font.bold: true
        font.pointSize: KCStyle.titlePointSize
        minimumPointSize: KCStyle.smallestPointSize
        fontSizeMode: Text.Fit
        wrapMode: Text.Wrap
        textFormat: Text.PlainText
        renderType: Text.NativeRendering

        Accessible.role: Accessible.Heading
        Accessible.name: text
    }

    PopupCloseButton {
        id: closeButton

        objectName: "closeButton"
        anchors.right: headerBar.right
        anchors.top: headerBar.top
        width: headerBar.height
        height: headerBar.height
        enabled: popup.enableClose
        onClicked: popup.closeBtnClicked()
    }
}
