import QtQuick
import "qrc:/tavrelon/ui/theme"

/// One tab of the sidebar: a symbol, with the tab's name as its tool tip.
PressArea {
    id: button

    property string icon
    property bool isSelected: false
    property color tint: Look.accent

    width: 48
    height: 48                         // less in a low window
    corner: 13
    toolTip: name
    toolTipBeside: true
    Accessible.role: Accessible.PageTab
    Accessible.selectable: true
    Accessible.selected: isSelected

    Rectangle {
        anchors.fill: parent
        radius: button.corner
        color: button.isSelected ? Look.faded(button.tint, 0.18) : Look.white(button.hovered ? 0.1 : 0)
        border.width: button.isSelected ? 1 : 0
        border.color: Look.faded(button.tint, 0.5)
        Behavior on color { ColorAnimation { duration: Look.quick } }
    }
    Symbol {
        anchors.centerIn: parent
        name: button.icon
        size: 22
        color: button.isSelected ? button.tint : button.hovered ? Look.primary : Look.secondary
    }
}
