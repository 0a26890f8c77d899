import QtQuick

/// A card with a switch; a press anywhere on the card switches. The owner writes `isOn` from its model and changes the
/// model on `toggled`.
PressArea {
    id: card

    property bool isOn: false
    property string title
    property string subtitle
    property string icon
    property color iconColor: Look.accent
    property alias trailing: trailingSlot.data   ///< what stands before the switch

    signal toggled(bool isOn)

    name: title
    corner: Look.corner
    width: parent ? parent.width : implicitWidth
    implicitHeight: Math.max(badge.height, texts.height) + 2 * 14
    onTriggered: toggled(!isOn)

    Accessible.role: Accessible.CheckBox
    Accessible.description: subtitle
    Accessible.checkable: true
    Accessible.checked: isOn

    GlassCardBackground { anchors.fill: parent }
    Rectangle {
        anchors.fill: parent
        radius: card.corner
        color: Look.white(card.pressed ? 0.07 : card.hovered ? 0.04 : 0)
    }
    SymbolBadge {
        id: badge
        anchors { left: parent.left; leftMargin: Look.padding; verticalCenter: parent.verticalCenter }
        name: card.icon
        tint: card.iconColor
    }
    Column {
        id: texts
        anchors {
            left: badge.right; leftMargin: 14
            right: trailingSlot.left; rightMargin: 16
            verticalCenter: parent.verticalCenter
        }
        spacing: 2

        Text {
            width: parent.width
            text: card.title
            color: Look.primary
            wrapMode: Text.Wrap
            font { family: Look.fontFamily; pixelSize: Look.bodySize; weight: Font.DemiBold }
        }
        Text {
            visible: text
            width: parent.width
            text: card.subtitle
            color: Look.secondary
            wrapMode: Text.Wrap
            font { family: Look.fontFamily; pixelSize: Look.smallSize }
        }
    }
    Row {
        id: trailingSlot
        anchors { right: toggle.left; rightMargin: children.length ? 14 : 0; verticalCenter: parent.verticalCenter }
    }
    GlassToggle {
        id: toggle
        anchors { right: parent.right; rightMargin: Look.padding; verticalCenter: parent.verticalCenter }
        isOn: card.isOn
    }
}
