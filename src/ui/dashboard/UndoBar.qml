import QtQuick
import "qrc:/tavrelon/ui/theme"

/// Says what was just done, and takes it back.
Rectangle {
    id: bar

    property string text
    property alias undoText: button.text
    property alias undoTip: button.toolTip

    signal undone

    width: parent ? parent.width : implicitWidth
    height: 54
    color: Look.faded(Look.night, 0.92)
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    EdgeBorder { edges: Qt.TopEdge }
    Symbol {
        id: symbol
        anchors { left: parent.left; leftMargin: Look.margin; verticalCenter: parent.verticalCenter }
        name: "checkmark"
        size: 15
        color: Look.accent
    }
    Text {
        anchors { left: symbol.right; leftMargin: 10; right: button.left; rightMargin: 12; verticalCenter: parent.verticalCenter }
        text: bar.text
        elide: Text.ElideRight
        color: Look.primary
        font { family: Look.fontFamily; pixelSize: Look.bodySize }
    }
    GlassButton {
        id: button
        anchors { right: parent.right; rightMargin: Look.margin; verticalCenter: parent.verticalCenter }
        icon: "arrow.uturn.backward"
        Accessible.description: bar.text
        onTriggered: bar.undone()
    }
}
