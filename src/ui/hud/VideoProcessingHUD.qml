import QtQuick
import "qrc:/tavrelon/ui/theme"

/// The recorded pictures are being looked at.
TitledHUD {
    id: face

    required property QtObject hud

    tint: Theme.purple
    title: face.hud.isEnglish ? "Video Vision" : "视频理解"
    subtitle: face.hud.waiting ? face.hud.waiting : face.hud.isEnglish ? "Analyzing..." : "正在分析…"

    GlowingBadge {
        from: Theme.faded(Theme.purple, 0.7)
        to: Theme.faded(Theme.blue, 0.8)
        glowColor: Theme.purple
        symbol: "film.fill"
        glow: face.beat.swing(1000)
    }
}
