import QtQuick
import "qrc:/tavrelon/ui/dashboard"

/// The card that a provider's section begins with.
GlassCard {
    id: head

    property string imageName
    property string title
    property string hint
    property color tint

    width: parent.width
    padding: 12

    Item {
        width: parent.width
        height: Math.max(badge.height, header.height)

        SymbolBadge {
            id: badge
            x: 4
            anchors.verticalCenter: parent.verticalCenter
            name: head.imageName
            tint: head.tint
        }
        SectionHeader {
            id: header
            anchors { left: badge.right; leftMargin: 14; right: parent.right; verticalCenter: parent.verticalCenter }
            title: head.title
            subtitle: head.hint
        }
    }
}
