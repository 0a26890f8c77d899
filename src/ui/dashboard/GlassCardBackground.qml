import QtQuick

/// The background of a card: a pane that catches a little light from above, and hides the stars behind its text.
Rectangle {
    id: card

    property real cornerRadius: Look.corner
    property bool isHighlighted: false

    radius: cornerRadius
    border.width: 1
    border.color: isHighlighted ? Look.faded(Look.accent, 0.5) : Look.white(0.12)
    gradient: Gradient {
        GradientStop { position: 0; color: card.isHighlighted ? "#e61c3c40" : "#e61f293c" }
        GradientStop { position: 1; color: card.isHighlighted ? "#e6162f35" : "#e6172033" }
    }
}
