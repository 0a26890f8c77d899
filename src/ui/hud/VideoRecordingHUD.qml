import QtQuick
import "qrc:/tavrelon/ui/theme"

/// Pictures of the window are being taken.
TitledHUD {
    id: face

    required property QtObject hud

    tint: Theme.red
    title: face.hud.isEnglish ? "Video Capture" : "视频录制"
    subtitle: face.hud.isEnglish ? "Recording..." : "正在录制…"

    Disc {
        anchors.centerIn: parent
        diameter: 32
        color: Theme.faded(Theme.red, 0.18)
        scale: 0.9 + 0.22 * face.beat.swing(900)
    }
    Disc {
        anchors.centerIn: parent
        diameter: 10
        color: Theme.red
    }
}
