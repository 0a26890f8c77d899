import QtQuick

/// A heading with an optional second line.
Column {
    id: header

    property string title
    property string subtitle
    property int level: 2              ///< 1 is the page's own

    width: parent ? parent.width : implicitWidth
    spacing: 3

    Text {
        width: parent.width
        text: header.title
        color: Look.primary
        wrapMode: Text.Wrap
        font { family: Look.fontFamily; pixelSize: header.level === 1 ? Look.titleSize : Look.bodySize; weight: Font.DemiBold }
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    Text {
        visible: text
        width: parent.width
        text: header.subtitle
        textFormat: Text.PlainText
        color: Look.secondary
        wrapMode: Text.Wrap
        font { family: Look.fontFamily; pixelSize: Look.smallSize }
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
}
