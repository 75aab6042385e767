import QtQuick 2.0
import KCControls 1.0

// A text in its default place in the popup, as high as it needs. It is laid out only while it is on the screen: most
// texts of an application never get there.
Item {
    id: body

    property string text
    property alias font: label.font

    x: KCStyle.margin
    y: KCStyle.bodyTop
    width: parent.width - 2 * KCStyle.margin
    height: label.height

    Accessible.role: Accessible.StaticText
    Accessible.name: text

    Text {
        id: label

        width: parent.width
        text: body.visible ? body.text : ""
        color: KCStyle.text
        font.pointSize: KCStyle.bodyPointSize
        wrapMode: Text.Wrap
        textFormat: Text.PlainText
        renderType: Text.NativeRendering
    }
}
