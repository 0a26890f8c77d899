import QtQuick

/// A ring that breathes between two scales, and between two opacities where they differ.
Rectangle {
    id: ring

    property real diameter: 44
    property color tint: "white"
    property real smallest: 0.92
    property real largest: 1.06
    property real faintest: 0.45
    property real strongest: 0.45
    property int duration: 1400
    property real breath: 0

    width: diameter
    height: diameter
    radius: diameter / 2
    color: "transparent"
    border.width: 1
    border.color: tint
    opacity: faintest + (strongest - faintest) * breath  // not the colour, for which its corners were made anew
    scale: smallest + (largest - smallest) * breath

    SequentialAnimation on breath {
        loops: Animation.Infinite
        NumberAnimation { from: 0; to: 1; duration: ring.duration; easing.type: Easing.InOutQuad }
        NumberAnimation { from: 1; to: 0; duration: ring.duration; easing.type: Easing.InOutQuad }
    }
}
