import QtQuick

/// The window's backdrop: a night sky with two glows and two layers of stars that breathe while `isAnimating`.
///
/// The sky moves by four grey levels a second at most, so five steps a second are all there is to see.
Item {
    id: sky

    property bool isAnimating: false
    property var farStars: []
    property var nearStars: []
    property real phase: 0             ///< 0 to 1 and back

    Timer {
        readonly property int halfPeriod: 8000
        property int elapsed: 0
        interval: 200
        repeat: true
        running: sky.isAnimating
        onTriggered: {
            elapsed = (elapsed + interval) % (2 * halfPeriod);
            sky.phase = (1 - Math.cos(Math.PI * elapsed / halfPeriod)) / 2;
        }
    }

    Rectangle { anchors.fill: parent; color: Look.night }
    StarLayer { anchors.fill: parent; stars: sky.farStars }
    StarLayer { anchors.fill: parent; stars: sky.nearStars; opacity: 0.6 + 0.2 * sky.phase }
}
