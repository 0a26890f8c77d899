import QtQuick

/// Five bars that rise and fall one after the other.
Item {
    id: waveform

    property color tint

    width: 22
    height: 16

    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        height: parent.height
        spacing: 3

        Repeater {
            model: 5
            WaveBar {
                required property int index
                anchors.verticalCenter: parent.verticalCenter
                tint: waveform.tint
                delay: index * 80
            }
        }
    }
}
