import QtQuick 2.0
import KCControls 1.0

// The icon of the popup's header, drawn on a grid of 24 by 24.
Canvas {
    id: icon

    property int iconType: KCSettings.iconNone

    readonly property int gridSize: 24

    readonly property var names: [
        "", qsTr("Alert"), qsTr("Question"), qsTr("In progress"), qsTr("Success"), qsTr("Error")
    ]

    function disc(ctx, color) {
        ctx.fillStyle = color
        ctx.beginPath()
        ctx.arc(12, 12, 11, 0, 2 * Math.PI)
        ctx.fill()
    }

    function dot(ctx, x, y) {
        ctx.beginPath()
        ctx.arc(x, y, 1.4, 0, 2 * Math.PI)
        ctx.fill()
    }

    function polyline(ctx, points) {
        ctx.beginPath()
        ctx.moveTo(points[0], points[1])
        for (var i = 2; i < points.length; i += 2)
            ctx.lineTo(points[i], points[i + 1])
    }

    function paintAlert(ctx) {
        ctx.fillStyle = ctx.strokeStyle = KCStyle.alert
        polyline(ctx, [12, 3, 22, 20.5, 2, 20.5])
        ctx.closePath()
        ctx.fill()
        ctx.stroke()
        ctx.fillStyle = ctx.strokeStyle = KCStyle.textOnAccent
        polyline(ctx, [12, 9, 12, 14])
        ctx.stroke()
        dot(ctx, 12, 18)
    }

    function paintQuestion(ctx) {
        disc(ctx, KCStyle.accent)
        ctx.fillStyle = KCStyle.textOnAccent
        ctx.beginPath()
        ctx.arc(12, 9.5, 3.5, Math.PI, 2.4 * Math.PI)
        ctx.lineTo(12, 14)
        ctx.stroke()
        dot(ctx, 12, 18)
    }

    function paintInprogress(ctx) {
        disc(ctx, KCStyle.accent)
        ctx.fillStyle = KCStyle.textOnAccent
        ctx.beginPath()
        ctx.arc(12, 12, 5.5, 0.1 * Math.PI, 1.6 * Math.PI)
        ctx.stroke()
        polyline(ctx, [11.6, 3.4, 17.6, 6.2, 12.4, 10])
        ctx.fill()
    }

    function paintSuccess(ctx) {
        disc(ctx, KCStyle.success)
        polyline(ctx, [7, 12.5, 10.5, 16, 17, 8.5])
        ctx.stroke()
    }

    function paintError(ctx) {
        disc(ctx, KCStyle.error)
        polyline(ctx, [8, 8, 16, 16])
        ctx.stroke()
        polyline(ctx, [16, 8, 8, 16])
        ctx.stroke()
    }

    Accessible.role: Accessible.Graphic
    Accessible.name: names[iconType]
    Accessible.ignored: iconType === KCSettings.iconNone

    onIconTypeChanged: requestPaint()
    onWidthChanged: requestPaint()

    onPaint: {
        var painters = [null, paintAlert, paintQuestion, paintInprogress, paintSuccess, paintError]
        var ctx = getContext("2d")
        ctx.reset()
        ctx.scale(width / gridSize, height / gridSize)
        ctx.lineWidth = 2.2
        ctx.lineCap = ctx.lineJoin = "round"
        ctx.strokeStyle = KCStyle.textOnAccent
        if (painters[iconType])
            painters[iconType](ctx)
    }
}
