import QtQuick
import QtQuick.Shapes
import "qrc:/tavrelon/ui/theme"

/// The microphone is open: an orange badge, a waveform, and what has been understood so far.
Item {
    id: face

    required property QtObject hud
    readonly property rect maskRect: glass.maskRect
    readonly property real maskRadius: glass.radius

    anchors.fill: parent

    Beat { id: beat }
    Glass {
        id: glass
        outline: Theme.faded(Theme.orange, 0.35)
    }

    Item {
        anchors.fill: parent
        anchors.margins: glass.margin + 1
        clip: true  // the halo is as high as the pane

        BreathingRing {
            x: badge.x + badge.width / 2 - diameter / 2 - parent.x
            anchors.verticalCenter: parent.verticalCenter
            diameter: 58
            tint: Theme.orange
            largest: 1.05
            faintest: 0.08
            strongest: 0.25
            breath: beat.swing(1100)
        }
    }
    Item {
        id: badge
        anchors { left: parent.left; leftMargin: glass.margin + 12; verticalCenter: parent.verticalCenter }
        width: 48
        height: 48

        Ring {
            anchors.centerIn: parent
            diameter: 48
            lineWidth: 1.2
            color: Theme.orange
            peak: 0.75
            rotation: beat.turn(2200)
        }
        Disc {
            anchors.centerIn: parent
            diameter: 36
            lineWidth: 0.8
            outline: Theme.faded(Theme.orange, 0.45)
            gradient: LinearGradient {
                x1: 0; y1: 0; x2: 0; y2: 36
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
        anchors { left: badge.right; leftMargin: 14; right: parent.right; rightMargin: glass.margin + 12; verticalCenter: parent.verticalCenter }
        spacing: 5

        VoiceWaveformView {
            beat: beat
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
