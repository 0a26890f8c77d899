import QtQuick
import "qrc:/tavrelon/ui/dashboard"

/// A key cap: shows a hotkey, and records a new one after a press. The keys themselves go past the view to its model.
/// Its width is the same whatever it shows, so that nothing moves while it records.
PressArea {
    id: recorder

    property string key
    property string keyName            ///< the key in words
    property string hint               ///< what to know while it records
    property bool canRecord: true      ///< false makes it a mere picture of its key
    property bool isRecording: false

    readonly property bool showsWords: isRecording && key === keyName   ///< waits for keys

    implicitWidth: 132
    implicitHeight: 34
    corner: 8
    enabled: canRecord
    activeFocusOnTab: canRecord
    toolTip: keyName === key ? "" : keyName
    Accessible.description: isRecording && hint ? keyName + ". " + hint : keyName

    GlassKeycapBackground { anchors.fill: parent; isActive: recorder.isRecording; isHovered: recorder.hovered }
    Text {
        anchors {
            left: parent.left; leftMargin: 8
            right: parent.right; rightMargin: 8
            verticalCenter: parent.verticalCenter; verticalCenterOffset: -1
        }
        text: recorder.key
        horizontalAlignment: Text.AlignHCenter
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: 10
        color: recorder.isRecording ? Look.accent : Look.primary
        font {
            family: recorder.showsWords ? Look.fontFamily : Look.keyFamily
            pixelSize: recorder.showsWords ? Look.smallSize : Look.keySize
            weight: recorder.showsWords ? Font.DemiBold : Font.Normal
            letterSpacing: recorder.showsWords ? 0 : 1
        }
    }
}
