import QtQuick
import "qrc:/tavrelon/ui/dashboard"

/// The card that a provider's section begins with. The name is on the provider's tile above it.
GlassCard {
    id: head

    property string imageName
    property string title              ///< for assistive technology
    property string hint
    property color tint

    width: parent.width
    padding: 12

    Item {
        width: parent.width
        height: Math.max(badge.height, hint.height)
        Accessible.role: Accessible.Heading
        Accessible.name: head.title

        SymbolBadge {
            id: badge
            x: 4
            anchors.verticalCenter: parent.verticalCenter
            name: head.imageName
            tint: head.tint
        }
        Text {
            id: hint
            anchors { left: badge.right; leftMargin: 14; right: parent.right; verticalCenter: parent.verticalCenter }
            text: head.hint
            color: Look.secondary
            wrapMode: Text.Wrap
            font { family: Look.fontFamily; pixelSize: Look.smallSize }
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
}
