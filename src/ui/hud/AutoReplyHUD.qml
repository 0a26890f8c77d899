import QtQuick
import "qrc:/tavrelon/ui/theme"

/// A reply to what is on the screen is being written.
TitledHUD {
    id: face

    required property QtObject hud

    tint: Theme.blue
    title: face.hud.isEnglish ? "Auto Reply" : "自动回复"
    subtitle: face.hud.waiting ? face.hud.waiting : face.hud.isEnglish ? "Composing..." : "正在撰写…"

    GlowingBadge {
        from: Theme.faded(Theme.blue, 0.65)
        to: Theme.faded(Theme.cyan, 0.85)
        glowColor: Theme.blue
        symbol: "bubble.left.and.bubble.right.fill"
        glow: face.beat.swing(1100)
    }
}
