import QtQuick 2.0
import KCControls 1.0

// A bar from 0 to 100 that slides to each new value.
Rectangle {
    id: bar

    property real value: 0
    property real shownValue: Math.max(0, Math.min(value, 100))

    x: KCStyle.margin
    y: KCStyle.barTop
    width: parent.width - 2 * KCStyle.margin
    height: KCStyle.barHeight
    radius: KCStyle.radius
    color: KCStyle.barTrack

    Accessible.role: Accessible.ProgressBar
    Accessible.name: qsTr("Progress: %1%").arg(value)

    Behavior on shownValue {
        enabled: bar.visible

        NumberAnimation { duration: KCStyle.slideDuration }
    }

    Rectangle {
        width: bar.width * bar.shownValue / 100
        height: bar.height
        radius: bar.radius
        color: KCStyle.accent
    }
}
