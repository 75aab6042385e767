import QtQuick 2.0
import KCControls 1.0

// A text in its default place in the popup. It is as high as it needs; with keepAbove it ends above that sibling,
// in a smaller font if it must.
Text {
    property Item keepAbove: null

    x: KCStyle.margin
    y: KCStyle.bodyTop
    width: parent.width - 2 * KCStyle.margin
    height: keepAbove ? keepAbove.y - KCStyle.spacing - y : undefined

    color: KCStyle.text
    font.pointSize: KCStyle.bodyPointSize
    minimumPointSize: KCStyle.smallestPointSize
    fontSizeMode: Text.VerticalFit
    wrapMode: Text.Wrap
    textFormat: Text.PlainText
    renderType: Text.NativeRendering

    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
