import QtQuick

/// The background of a card: a pane that catches a little light from above.
Rectangle {
    property real cornerRadius: Look.corner
    property bool isHighlighted: false

    radius: cornerRadius
    border.width: 1
    border.color: isHighlighted ? Look.faded(Look.accent, 0.5) : Look.white(0.14)
    gradient: Gradient {
        GradientStop { position: 0; color: isHighlighted ? Look.faded(Look.accent, 0.16) : Look.white(0.105) }
        GradientStop { position: 1; color: isHighlighted ? Look.faded(Look.accent, 0.1) : Look.white(0.065) }
    }
}
