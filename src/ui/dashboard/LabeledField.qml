import QtQuick

/// A text field under its label.
Column {
    id: labeled

    property string label
    property string placeholder
    property string text
    property bool isSecure: false

    signal edited(string text)

    width: parent ? parent.width : implicitWidth
    spacing: 6

    Text {
        text: labeled.label
        color: Look.secondary
        font { family: Look.fontFamily; pixelSize: Look.smallSize; weight: Font.DemiBold }
    }
    GlassTextField {
        width: parent.width
        name: labeled.label
        placeholder: labeled.placeholder
        text: labeled.text
        isSecure: labeled.isSecure
        onEdited: text => labeled.edited(text)
    }
}
