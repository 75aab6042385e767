import QtQuick 2.0
import KCControls 1.0

// A push button. The one that holds the focus is filled, since Enter means it.
Rectangle {
    id: button

    property string textToDisplay
    property bool fixedHeight: true
    property bool applyAnchors: true
    readonly property bool pressed: touchArea.pressed && touchArea.containsMouse

    signal clicked()

    anchors.right: applyAnchors ? parent.right : undefined
    anchors.bottom: applyAnchors ? parent.bottom : undefined
    anchors.margins: KCStyle.margin
    width: KCStyle.buttonWidth
    height: fixedHeight ? KCStyle.buttonHeight
                        : Math.max(KCStyle.buttonHeight, label.contentHeight + 2 * KCStyle.buttonPadding)
    radius: KCStyle.radius
    border.width: KCStyle.lineWidth
    border.color: {
        if (!enabled)
            return KCStyle.line
        return focus ? color : KCStyle.accent
    }
    color: {
        if (!enabled)
            return KCStyle.buttonDisabled
        if (focus)
            return pressed ? KCStyle.accentPressed : KCStyle.accent
        return pressed ? KCStyle.buttonPressed : KCStyle.buttonBackground
    }

    Accessible.role: Accessible.Button
    Accessible.name: textToDisplay
    Accessible.focusable: true
    Accessible.onPressAction: if (visible && enabled) clicked()

    // Wraps between words, and shrinks only where that is not enough.
    Text {
        id: label

        anchors.centerIn: parent
        width: parent.width - 2 * KCStyle.buttonPadding
        height: parent.height - 2 * KCStyle.lineWidth
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        text: button.visible ? button.textToDisplay : ""
        color: {
            if (!button.enabled)
                return KCStyle.textDisabled
            return button.focus ? KCStyle.textOnAccent : KCStyle.accent
        }
        font.pointSize: KCStyle.buttonPointSize
        minimumPointSize: KCStyle.smallestPointSize
        fontSizeMode: button.fixedHeight ? Text.Fit : Text.HorizontalFit
        wrapMode: Text.WordWrap
        textFormat: Text.PlainText
        renderType: Text.NativeRendering
    }

    MouseArea {
        id: touchArea

        anchors.fill: parent
        onClicked: button.clicked()
    }
}
