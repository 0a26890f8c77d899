import QtQuick
import "qrc:/tavrelon/ui/theme"

/// The microphone is open: an orange badge, a waveform, and what has been understood so far.
Item {
    id: face

    required property QtObject hud
    readonly property rect maskRect: glass.maskRect
    readonly property real maskRadius: glass.radius

    anchors.fill: parent

    Glass {
        id: glass
        outline: Theme.faded(Theme.orange, 0.35)
    }

    Item {
        id: badge
        anchors { left: parent.left; leftMargin: 12; verticalCenter: parent.verticalCenter }
        width: 48
        height: 48

        BreathingRing {
            anchors.centerIn: parent
            diameter: 58
            tint: Theme.orange
            largest: 1.05
            faintest: 0.08
            strongest: 0.25
            duration: 1100
        }
        Ring {
            anchors.centerIn: parent
            diameter: 48
            lineWidth: 1.2
            color: Theme.orange
            peak: 0.75
            RotationAnimation on rotation { from: 0; to: 360; duration: 2200; loops: Animation.Infinite }
        }
        Rectangle {
            anchors.centerIn: parent
            width: 36
            height: 36
            radius: 18
            border.width: 0.8
            border.color: Theme.faded(Theme.orange, 0.45)
            gradient: Gradient {
                GradientStop { position: 0; color: Theme.faded(Theme.orange, 0.42) }
                GradientStop { position: 1; color: Theme.faded(Theme.orange, 0.12) }
            }
        }
        Symbol {
            anchors.centerIn: parent
            name: "waveform"
            size: 15
            color: Theme.faded(Qt.color("white"), 0.9)
        }
    }

    Column {
        anchors { left: badge.right; leftMargin: 12; right: parent.right; rightMargin: 16; verticalCenter: parent.verticalCenter }
        spacing: 5

        VoiceWaveformView {
            tint: Theme.orange
        }
        Text {
            width: Math.min(parent.width, 180)
            visible: text.length > 0
            text: face.hud.heard
            textFormat: Text.PlainText
            color: Theme.secondary
            font.pixelSize: 11
            elide: Text.ElideLeft  // the newest words are the interesting ones
            maximumLineCount: 1
        }
    }
}
