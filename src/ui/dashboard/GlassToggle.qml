import QtQuick
import "qrc:/tavrelon/ui/theme"

/// The picture of a switch. `PressArea`s that hold it do the switching.
Rectangle {
    id: toggle

    property bool isOn: false

    width: 42
    height: 24
    radius: 12
    color: isOn ? Look.accent : Look.white(0.14)
    border.width: isOn ? 0 : 1
    border.color: Look.white(0.28)
    Behavior on color { ColorAnimation { duration: Look.quick } }

    Disc {
        x: toggle.isOn ? parent.width - width - 3 : 3
        anchors.verticalCenter: parent.verticalCenter
        diameter: 18
        color: "white"
        Behavior on x { NumberAnimation { duration: Look.quick; easing.type: Easing.OutQuad } }
    }
}
