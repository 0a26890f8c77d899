import QtQuick
import "qrc:/tavrelon/ui/dashboard"

/// Says that what was learned is set aside since the provider was changed, and asks what becomes of it; away otherwise.
GlassCard {
    id: notice

    property QtObject taught

    visible: taught.isSetAside
    width: parent ? parent.width : implicitWidth

    MessageLine { text: notice.taught.texts.setAside; tint: Look.warning }
    Item {
        width: parent.width
        height: Look.fieldHeight

        Text {
            anchors { left: parent.left; right: answers.left; rightMargin: 12; verticalCenter: parent.verticalCenter }
            text: notice.taught.origin
            textFormat: Text.PlainText
            color: Look.secondary
            elide: Text.ElideRight
            font { family: Look.fontFamily; pixelSize: Look.smallSize }
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        Row {
            id: answers
            anchors.right: parent.right
            spacing: 8

            GlassButton {
                text: notice.taught.texts.keep
                onTriggered: notice.taught.keep()
            }
            GlassButton {
                icon: "trash"
                text: notice.taught.texts.remove
                onTriggered: notice.taught.remove()
            }
        }
    }
}
