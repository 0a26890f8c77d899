import QtQuick

/// A container of glass that stands over other things, so it is not translucent.
Rectangle {
    property real cornerRadius: 20

    radius: cornerRadius
    border.width: 1
    border.color: Look.white(0.28)
    gradient: Gradient {
        GradientStop { position: 0; color: "#1d2840" }
        GradientStop { position: 1; color: "#121a2d" }
    }
}
