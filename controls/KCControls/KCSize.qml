pragma Singleton
import QtQuick 2.0

// Picks between the two sizes of a thing: for small displays, and for all larger ones.
QtObject {
    property int displayWidth: 800

    readonly property int smallDisplayWidth: 480
    readonly property bool smallDisplay: displayWidth <= smallDisplayWidth

    function sizedWidth(small, large) {
        return smallDisplay ? small : large
    }

    function sizedHeight(small, large) {
        return smallDisplay ? small : large
    }
}
