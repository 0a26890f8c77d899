import QtQuick
import "qrc:/tavrelon/ui/dashboard"

/// A key cap: shows a hotkey, and records a new one after a press. The keys themselves go past the view to its model.
PressArea {
    id: recorder

    property string key
    property bool isRecording: false

    implicitWidth: Math.max(96, label.implicitWidth + 28)
    implicitHeight: 34
    corner: 8
    Accessible.description: key

    GlassKeycapBackground { anchors.fill: parent; isActive: recorder.isRecording; isHovered: recorder.hovered }
    Text {
        id: label
        anchors { centerIn: parent; verticalCenterOffset: -1 }
        text: recorder.key
        color: recorder.isRecording ? Look.accent : Look.primary
        font {
            family: recorder.isRecording ? Look.fontFamily : Look.keyFamily
            pixelSize: recorder.isRecording ? 12 : 14
            weight: recorder.isRecording ? Font.DemiBold : Font.Normal
            letterSpacing: recorder.isRecording ? 0 : 1
        }
    }
}
