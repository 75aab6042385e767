pragma Singleton
import QtQuick 2.0
import KCControls 1.0

// Colours and measures that the controls share. Every text colour has a contrast of 4.5:1 or more on its background.
QtObject {
    readonly property color mainWindowBackgroundWhenPopup: "#26333f"
    readonly property color popupBackground: "#ffffff"
    readonly property color headerBackground: "#edf2f6"
    readonly property color line: "#c5d0da"
    readonly property color text: "#17222d"
    readonly property color textOnAccent: "#ffffff"
    readonly property color textDisabled: "#566370"

    readonly property color accent: "#0b5cad"
    readonly property color accentPressed: "#073f78"
    readonly property color buttonBackground: "#ffffff"
    readonly property color buttonPressed: "#d3e3f3"
    readonly property color buttonDisabled: "#e4e9ee"
    readonly property color barTrack: "#d9e1e8"

    readonly property color alert: "#b45a00"
    readonly property color success: "#1c7a3c"
    readonly property color error: "#b3261e"

    readonly property int popupWidth: KCSize.sizedWidth(456, 640)
    readonly property int popupHeight: KCSize.sizedHeight(248, 400)
    readonly property int headerHeight: KCSize.sizedHeight(44, 60)
    readonly property int headerTextPadding: KCSize.sizedHeight(4, 6)
    readonly property int iconSize: KCSize.sizedHeight(24, 34)
    readonly property int closeCrossSize: KCSize.sizedHeight(16, 22)
    readonly property int closeCrossThickness: KCSize.sizedHeight(2, 3)

    readonly property int margin: KCSize.sizedHeight(12, 24)
    readonly property int spacing: KCSize.sizedHeight(8, 12)
    readonly property int radius: KCSize.sizedHeight(4, 6)
    readonly property int lineWidth: 1
    readonly property int bodyTop: headerHeight + lineWidth + margin

    readonly property int buttonWidth: KCSize.sizedWidth(86, 150)
    readonly property int buttonHeight: KCSize.sizedHeight(36, 54)
    readonly property int buttonPadding: KCSize.sizedHeight(6, 10)
    readonly property int barTop: KCSize.sizedHeight(82, 124)
    readonly property int barHeight: KCSize.sizedHeight(14, 22)

    readonly property int titlePointSize: KCSize.sizedHeight(12, 18)
    readonly property int bodyPointSize: KCSize.sizedHeight(10, 16)
    readonly property int buttonPointSize: KCSize.sizedHeight(10, 16)
    readonly property int smallestPointSize: KCSize.sizedHeight(6, 9)

    readonly property int slideDuration: 250
}
