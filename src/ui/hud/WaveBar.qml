import QtQuick
import "qrc:/tavrelon/ui/theme"

/// One bar of the waveform.
Rectangle {
    id: bar

    property color tint
    property int delay
    property real grown: 6

    width: 3
    height: Math.round(grown * 2) / 2  // finer steps cost drawing that nobody sees
    radius: 1.5
    color: Theme.faded(tint, 0.9)

    SequentialAnimation {
        running: true
        PauseAnimation { duration: bar.delay }
        SequentialAnimation {
            loops: Animation.Infinite
            NumberAnimation { target: bar; property: "grown"; from: 6; to: 16; duration: 550; easing.type: Easing.InOutQuad }
            NumberAnimation { target: bar; property: "grown"; from: 16; to: 6; duration: 550; easing.type: Easing.InOutQuad }
        }
    }
}
