import QtQuick
import "qrc:/tavrelon/ui/theme"

/// A small wheel of dots that turns while it is visible. It turns in steps, which cost little.
Item {
    id: spinner

    property color color: "white"
    property int step: 0
    readonly property int count: 8

    width: 16
    height: 16

    Timer {
        interval: 100
        repeat: true
        running: spinner.visible && Theme.moves
        onTriggered: spinner.step = (spinner.step + 1) % spinner.count
    }
    Repeater {
        model: spinner.count

        Disc {
            required property int index
            readonly property real angle: 2 * Math.PI * index / spinner.count
            readonly property real reach: (spinner.width - width) / 2

            x: reach * (1 + Math.sin(angle))
            y: reach * (1 - Math.cos(angle))
            diameter: spinner.width * 0.22
            color: spinner.color
            opacity: 1 - ((spinner.step - index + spinner.count) % spinner.count) / (spinner.count + 1)
        }
    }
}
