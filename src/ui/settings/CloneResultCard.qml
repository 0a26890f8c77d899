import QtQuick
import "qrc:/tavrelon/ui/dashboard"

/// What was learned of one kind, or that nothing was.
GlassCard {
    id: card

    property string title
    property string emptyText
    property var pieces: []

    width: parent.width

    SectionHeader { title: card.title }
    Text {
        visible: card.pieces.length === 0
        width: parent.width
        text: card.emptyText
        color: Look.tertiary
        wrapMode: Text.Wrap
        font { family: Look.fontFamily; pixelSize: Look.bodySize }
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
    LongText {
        visible: card.pieces.length > 0
        pieces: card.pieces
        name: card.title
    }
}
