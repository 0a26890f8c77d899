import QtQuick
import "qrc:/tavrelon/ui/theme"
import "qrc:/tavrelon/ui/dashboard"

/// A line that says what is missing, what failed, or what was done; away while there is nothing to say.
Item {
    id: line

    property string text
    property color tint: Theme.red
    property string icon: "exclamationmark.triangle.fill"

    visible: text
    width: parent ? parent.width : implicitWidth
    height: message.height
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    Symbol {
        id: symbol
        y: 1
        name: line.icon
        size: 14
        color: line.tint
    }
    Text {
        id: message
        anchors { left: symbol.right; leftMargin: 7; right: parent.right }
        text: line.text
        textFormat: Text.PlainText
        color: line.tint
        wrapMode: Text.Wrap
        maximumLineCount: 12
        elide: Text.ElideRight
        font { family: Look.fontFamily; pixelSize: Look.smallSize }
    }
}
