import QtQuick
import QtQuick.Shapes
import "qrc:/tavrelon/ui/theme"

/// A disc with a symbol that glows up and down.
Item {
    id: badge

    property color from
    property color to
    property color glowColor
    property string symbol
    property int duration: 1000

    anchors.centerIn: parent
    width: 34
    height: 34

    Shape {
        id: glow
        anchors.centerIn: parent
        width: 58
        height: 58
        ShapePath {
            strokeWidth: -1
            fillGradient: RadialGradient {
                centerX: 29; centerY: 29; focalX: 29; focalY: 29; centerRadius: 29
                GradientStop { position: 0; color: Theme.faded(badge.glowColor, 0.75) }
                GradientStop { position: 0.58; color: Theme.faded(badge.glowColor, 0.5) }
                GradientStop { position: 1; color: Theme.faded(badge.glowColor, 0) }
            }
            PathAngleArc { centerX: 29; centerY: 29; radiusX: 29; radiusY: 29; startAngle: 0; sweepAngle: 360 }
        }

        SequentialAnimation on opacity {
            loops: Animation.Infinite
            NumberAnimation { from: 0.35; to: 1; duration: badge.duration; easing.type: Easing.InOutQuad }
            NumberAnimation { from: 1; to: 0.35; duration: badge.duration; easing.type: Easing.InOutQuad }
        }
    }
    Rectangle {
        anchors.fill: parent
        radius: 17
        rotation: -45
        gradient: Gradient {
            GradientStop { position: 0; color: badge.from }
            GradientStop { position: 1; color: badge.to }
        }
    }
    Symbol {
        anchors.centerIn: parent
        name: badge.symbol
        size: 17
    }
}
