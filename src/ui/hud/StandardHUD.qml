import QtQuick
import "qrc:/tavrelon/ui/theme"

/// An icon in a coloured circle and the name of the state.
Item {
    id: face

    required property QtObject hud
    readonly property color tint: Theme.tint(hud.tint)
    readonly property rect maskRect: glass.maskRect
    readonly property real maskRadius: glass.radius

    anchors.fill: parent

    Beat { id: beat; running: face.hud.isPulsing && Theme.moves }
    Glass {
        id: glass
        outline: Theme.faded(face.tint, 0.35)
    }

    Row {
        anchors.centerIn: parent
        spacing: 12

        Item {
            width: 32
            height: 32
            anchors.verticalCenter: parent.verticalCenter

            Disc {
                diameter: 32
                color: Theme.faded(face.tint, 0.2)
                scale: face.hud.isPulsing ? 1 + 0.14 * beat.swing(1000) : 1
            }
            Symbol {
                anchors.centerIn: parent
                name: face.hud.symbol
                color: face.tint
                rotation: face.hud.isRotating ? beat.turn(1000) : 0
            }
        }

        Text {
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, face.width - 92)
            text: face.hud.label
            textFormat: Text.PlainText
            color: Theme.primary
            wrapMode: Text.Wrap
            maximumLineCount: 2
            elide: Text.ElideRight
            font.pixelSize: 13
            font.weight: Font.Medium
        }
    }
}
