import QtQuick
import QtQuick.Shapes
import "qrc:/tavrelon/ui/theme"

/// A disc with a symbol that glows up and down.
Item {
    id: badge

    property color from
    property color to
    property color glowColor
    property string symbol
    property real glow: 0              ///< from 0 to 1

    anchors.centerIn: parent
    width: 34
    height: 34

    Disc {
        anchors.centerIn: parent
        diameter: 58
        opacity: 0.35 + 0.65 * badge.glow
        gradient: RadialGradient {
            centerX: 29; centerY: 29; focalX: 29; focalY: 29; centerRadius: 29
            GradientStop { position: 0; color: Theme.faded(badge.glowColor, 0.75) }
            GradientStop { position: 0.58; color: Theme.faded(badge.glowColor, 0.5) }
            GradientStop { position: 1; color: Theme.faded(badge.glowColor, 0) }
        }
    }
    Disc {
        anchors.centerIn: parent
        diameter: 34
        gradient: LinearGradient {
            x1: 5; y1: 5; x2: 29; y2: 29
            GradientStop { position: 0; color: badge.from }
            GradientStop { position: 1; color: badge.to }
        }
    }
    Symbol {
        anchors.centerIn: parent
        name: badge.symbol
        size: 15
    }
}
