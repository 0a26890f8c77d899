import QtQuick

/// A section of the help sheet.
Column {
    id: section

    property string title
    property var items: []

    width: parent ? parent.width : implicitWidth
    spacing: 7

    Text {
        width: parent.width
        text: section.title
        color: Look.primary
        font { family: Look.fontFamily; pixelSize: Look.bodySize; weight: Font.DemiBold }
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    Repeater {
        model: section.items

        Row {
            required property string modelData
            width: section.width
            spacing: 9

            Rectangle {
                y: 8
                width: 4
                height: 4
                radius: 2
                color: Look.accent
            }
            Text {
                width: parent.width - 13
                text: parent.modelData
                color: Look.secondary
                wrapMode: Text.Wrap
                lineHeight: 1.15
                font { family: Look.fontFamily; pixelSize: Look.bodySize }
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
        }
    }
}
