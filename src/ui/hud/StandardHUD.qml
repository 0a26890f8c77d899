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

            Rectangle {
                id: circle
                anchors.fill: parent
                radius: 16
                color: Theme.faded(face.tint, 0.2)

                SequentialAnimation on scale {
                    running: face.hud.isPulsing
                    loops: Animation.Infinite
                    onRunningChanged: if (!running) circle.scale = 1
                    NumberAnimation { from: 1; to: 1.14; duration: 1000; easing.type: Easing.InOutQuad }
                    NumberAnimation { from: 1.14; to: 1; duration: 1000; easing.type: Easing.InOutQuad }
                }
            }

            Symbol {
                id: icon
                anchors.centerIn: parent
                name: face.hud.symbol
                color: face.tint

                RotationAnimation on rotation {
                    running: face.hud.isRotating
                    loops: Animation.Infinite
                    from: 0
                    to: 360
                    duration: 1000
                    onRunningChanged: if (!running) icon.rotation = 0
                }
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
