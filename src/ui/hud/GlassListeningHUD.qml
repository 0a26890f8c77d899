import QtQuick
import QtQuick.Shapes
import "qrc:/tavrelon/ui/theme"

/// A small round badge of glass: the program collects what is typed.
Item {
    id: face

    required property QtObject hud
    readonly property rect maskRect: Qt.rect(4, 4, 52, 52)
    readonly property real maskRadius: 26

    anchors.fill: parent

    // Lets the white rings be seen on a white page.
    Shape {
        anchors.fill: parent
        visible: surroundings.composited
        ShapePath {
            strokeWidth: -1
            fillGradient: RadialGradient {
                centerX: 30; centerY: 30; focalX: 30; focalY: 30; centerRadius: 30
                GradientStop { position: 0; color: "#e0181b24" }
                GradientStop { position: 0.55; color: "#a0181b24" }
                GradientStop { position: 0.82; color: "#59181b24" }
                GradientStop { position: 1; color: "#00181b24" }
            }
            PathAngleArc { centerX: 30; centerY: 30; radiusX: 30; radiusY: 30; startAngle: 0; sweepAngle: 360 }
        }
    }
    Rectangle {
        visible: !surroundings.composited
        anchors.fill: parent
        color: Theme.glassBottom
    }

    BreathingRing {
        anchors.centerIn: parent
        diameter: 44
    }

    Ring {
        anchors.centerIn: parent
        diameter: 36
        lineWidth: 1.1
        RotationAnimation on rotation { from: 0; to: 360; duration: 2600; loops: Animation.Infinite }
    }

    Rectangle {
        id: disc
        anchors.centerIn: parent
        width: 28
        height: 28
        radius: 14
        gradient: Gradient {
            GradientStop { position: 0; color: "#6b7286" }
            GradientStop { position: 1; color: "#343947" }
        }
    }
    Rectangle {
        anchors.fill: disc
        radius: 14
        opacity: 0.55
        rotation: -45
        gradient: Gradient {
            GradientStop { position: 0; color: Theme.faded(Qt.color("white"), 0.65) }
            GradientStop { position: 1; color: Theme.faded(Qt.color("white"), 0) }
        }
    }
    Rectangle {
        anchors.fill: disc
        radius: 14
        color: "transparent"
        border.width: 0.8
        border.color: Theme.faded(Qt.color("white"), 0.35)
    }
    Symbol {
        anchors.centerIn: parent
        name: "waveform"
        size: 13
        color: Theme.faded(Qt.color("white"), 0.85)
    }
}
