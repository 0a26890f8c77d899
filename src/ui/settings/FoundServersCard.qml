import QtQuick
import "qrc:/tavrelon/ui/dashboard"

/// The model servers that answer on this machine, each with its models; a click takes one.
GlassCard {
    id: card

    required property QtObject found
    readonly property var texts: found.texts

    width: parent ? parent.width : implicitWidth
    spacing: 10
    Component.onCompleted: if (found.isNothingChosen) found.look()

    SectionHeader { title: card.texts.found; subtitle: card.texts.foundHint }
    Repeater {
        model: card.found.servers

        Column {
            id: server

            required property var modelData

            width: parent.width
            spacing: 6

            Text {
                width: parent.width
                text: server.modelData.title + "  ·  " + server.modelData.baseURL
                textFormat: Text.PlainText
                color: Look.secondary
                elide: Text.ElideRight
                font { family: Look.fontFamily; pixelSize: Look.smallSize }
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            Repeater {
                model: server.modelData.models

                Item {
                    id: row

                    required property var modelData

                    width: parent.width
                    height: Look.fieldHeight

                    Text {
                        anchors { left: parent.left; right: use.left; rightMargin: 12; verticalCenter: parent.verticalCenter }
                        text: row.modelData.name + (row.modelData.isTextOnly ? "   (" + card.texts.textOnly + ")" : "")
                        textFormat: Text.PlainText
                        color: Look.primary
                        elide: Text.ElideRight
                        font { family: Look.fontFamily; pixelSize: Look.bodySize }
                        Accessible.role: Accessible.StaticText
                        Accessible.name: text
                    }
                    GlassButton {
                        id: use
                        anchors.right: parent.right
                        text: card.texts.use
                        name: card.texts.use + " " + row.modelData.name
                        onTriggered: card.found.take(server.modelData.baseURL, row.modelData.name)
                    }
                }
            }
        }
    }
}
