import QtQuick
import "qrc:/tavrelon/ui/theme"
import "qrc:/tavrelon/ui/dashboard"

/// One permission: what it is for, and whether it is given.
Item {
    id: card

    property string title
    property string description
    property string icon
    property bool isGranted: false
    property var texts

    signal allow

    implicitHeight: 72

    GlassCardBackground { anchors.fill: parent }
    SymbolBadge {
        id: badge
        anchors { left: parent.left; leftMargin: Look.padding; verticalCenter: parent.verticalCenter }
        name: card.icon
        tint: card.isGranted ? Look.accent : Look.warning
    }
    Column {
        anchors {
            left: badge.right; leftMargin: 14
            right: parent.right; rightMargin: 130
            verticalCenter: parent.verticalCenter
        }
        spacing: 2
        Text {
            width: parent.width
            text: card.title
            color: Look.primary
            elide: Text.ElideRight
            font { family: Look.fontFamily; pixelSize: Look.bodySize; weight: Font.DemiBold }
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        Text {
            width: parent.width
            text: card.description
            color: Look.secondary
            elide: Text.ElideRight
            font { family: Look.fontFamily; pixelSize: Look.smallSize }
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
    Row {
        visible: card.isGranted
        anchors { right: parent.right; rightMargin: Look.padding + 4; verticalCenter: parent.verticalCenter }
        spacing: 6
        Accessible.role: Accessible.StaticText
        Accessible.name: card.title + ": " + card.texts.granted

        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: "checkmark.circle.fill"
            size: 17
            color: Look.accent
        }
        Text {
            text: card.texts.granted
            color: Look.accent
            font { family: Look.fontFamily; pixelSize: Look.bodySize; weight: Font.DemiBold }
        }
    }
    GlassButton {
        visible: !card.isGranted
        anchors { right: parent.right; rightMargin: Look.padding; verticalCenter: parent.verticalCenter }
        isProminent: true
        text: card.texts.allow
        Accessible.description: card.title
        onTriggered: card.allow()
    }
}
