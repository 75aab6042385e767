pragma Singleton
import QtQuick 2.0

QtObject {
    readonly property int iconNone: 0
    readonly property int iconAlert: 1
    readonly property int iconQuestion: 2
    readonly property int iconInprogress: 3
    readonly property int iconSuccess: 4
    readonly property int iconError: 5
}
