import QtQuick
import "qrc:/tavrelon/ui/theme"

/// Pictures of the window are being taken.
TitledHUD {
    id: face

    required property QtObject hud

    tint: Theme.red
    title: face.hud.isEnglish ? "Video Capture" : "视频录制"
    subtitle: face.hud.isEnglish ? "Recording..." : "正在录制…"

    Rectangle {
        id: circle
        anchors.centerIn: parent
        width: 32
        height: 32
        radius: 16
        color: Theme.faded(Theme.red, 0.18)

        SequentialAnimation on scale {
            loops: Animation.Infinite
            NumberAnimation { from: 0.9; to: 1.12; duration: 900; easing.type: Easing.InOutQuad }
            NumberAnimation { from: 1.12; to: 0.9; duration: 900; easing.type: Easing.InOutQuad }
        }
    }
    Rectangle {
        anchors.centerIn: parent
        width: 10
        height: 10
        radius: 5
        color: Theme.red
    }
}
