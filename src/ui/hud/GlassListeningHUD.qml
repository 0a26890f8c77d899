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

    Beat { id: beat }

    // Lets the white rings be seen on a white page.
    Disc {
        visible: surroundings.composited
        diameter: 60
        gradient: RadialGradient {
            centerX: 30; centerY: 30; focalX: 30; focalY: 30; centerRadius: 30
            GradientStop { position: 0; color: "#e0181b24" }
            GradientStop { position: 0.55; color: "#a0181b24" }
            GradientStop { position: 0.82; color: "#59181b24" }
            GradientStop { position: 1; color: "#00181b24" }
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
        breath: beat.swing(1400)
    }

    Ring {
        anchors.centerIn: parent
        diameter: 36
        lineWidth: 1.1
        rotation: beat.turn(2600)
    }

    Disc {
        anchors.centerIn: parent
        diameter: 32
        gradient: RadialGradient {
            centerX: 16; centerY: 16; focalX: 16; focalY: 16; centerRadius: 16
            GradientStop { position: 0.86; color: Theme.faded(Qt.color("black"), 0.2) }
            GradientStop { position: 1; color: Theme.faded(Qt.color("black"), 0) }
        }
    }
    Disc {
        anchors.centerIn: parent
        diameter: 28
        gradient: LinearGradient {
            x1: 0; y1: 0; x2: 0; y2: 28
            GradientStop { position: 0; color: "#6b7286" }
            GradientStop { position: 1; color: "#343947" }
        }
    }
    Disc {
        anchors.centerIn: parent
        diameter: 28
        opacity: 0.55
        gradient: LinearGradient {
            x1: 4; y1: 4; x2: 24; y2: 24
            GradientStop { position: 0; color: Theme.faded(Qt.color("white"), 0.65) }
            GradientStop { position: 1; color: Theme.faded(Qt.color("white"), 0) }
        }
    }
    Disc {
        anchors.centerIn: parent
        diameter: 28
        lineWidth: 0.8
        outline: Theme.faded(Qt.color("white"), 0.35)
    }
    Symbol {
        anchors.centerIn: parent
        name: "waveform"
        size: 10.5
        color: Theme.faded(Qt.color("white"), 0.85)
    }
}
