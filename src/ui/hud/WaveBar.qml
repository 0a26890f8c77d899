import QtQuick
import QtQuick.Shapes
import "qrc:/tavrelon/ui/theme"

/// One bar of the waveform, a capsule.
ShapePath {
    id: bar

    required property QtObject beat
    required property int place        ///< counted from the left
    property color tint

    readonly property real thickness: 3
    readonly property real gap: 3
    readonly property real reach: (6 + 10 * beat.swing(550, place * 80) - thickness) / 2

    strokeWidth: thickness
    strokeColor: Theme.faded(tint, 0.9)
    fillColor: "transparent"
    capStyle: ShapePath.RoundCap
    startX: thickness / 2 + place * (thickness + gap)
    startY: 8 - reach
    PathLine { relativeX: 0; relativeY: 2 * bar.reach }
}
