import QtQuick
import "qrc:/tavrelon/ui/theme"
import "qrc:/tavrelon/ui/dashboard"

/// The tile of one provider. It is selected while its section is on view, and lit while the provider is in use.
PressArea {
    id: tile

    property string imageName
    property string title
    property bool isSelected: false
    property bool isEnabled: false     ///< switched on
    property color tint: Look.accent

    implicitHeight: 64
    corner: Look.corner
    name: title
    Accessible.role: Accessible.PageTab
    Accessible.selectable: true
    Accessible.selected: isSelected
    Accessible.checkable: true
    Accessible.checked: isEnabled

    GlassCardBackground {
        anchors.fill: parent
        border.color: tile.isSelected ? Look.faded(tile.tint, 0.75) : Look.white(0.12)
    }
    Rectangle {
        anchors.fill: parent
        radius: tile.corner
        color: tile.isSelected ? Look.faded(tile.tint, 0.1) : Look.white(tile.pressed ? 0.07 : tile.hovered ? 0.04 : 0)
    }
    Row {
        anchors { left: parent.left; leftMargin: Look.padding; verticalCenter: parent.verticalCenter }
        spacing: 12

        SymbolBadge {
            name: tile.imageName
            tint: tile.isSelected || tile.isEnabled ? tile.tint : Look.white(0.6)
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: tile.title
            color: tile.isSelected ? Look.primary : Look.secondary
            font { family: Look.fontFamily; pixelSize: Look.bodySize; weight: Font.DemiBold }
        }
    }
    Symbol {
        visible: tile.isEnabled
        anchors { right: parent.right; rightMargin: Look.padding; verticalCenter: parent.verticalCenter }
        name: "checkmark.circle.fill"
        size: 18
        color: tile.tint
    }
}
