import QtQuick
import "qrc:/tavrelon/ui/theme"

/// The window's backdrop: a night sky with two glows and two layers of stars that breathe while `isAnimating`.
///
/// Nothing is drawn anew while it breathes: the sky at rest and the sky at its brightest are drawn once for each size,
/// and the second fades in over the first. It changes by a few grey levels a second, so five steps a second are all
/// there is to see.
Item {
    id: sky

    property bool isAnimating: false
    property var farStars: []
    property var nearStars: []
    property real phase: 0             ///< 0 to 1 and back

    StarLayer { id: farLayer; stars: sky.farStars }
    StarLayer { id: nearLayer; stars: sky.nearStars }

    Timer {
        readonly property int halfPeriod: 8000
        property int elapsed: 0
        interval: 200
        repeat: true
        running: sky.isAnimating && Theme.moves
        onTriggered: {
            elapsed = (elapsed + interval) % (2 * halfPeriod);
            sky.phase = (1 - Math.cos(Math.PI * elapsed / halfPeriod)) / 2;
        }
    }

    component Sky: Canvas {
        property bool isBright

        function glow(context, x, y, colour, from, to, scale, opacity) {
            context.save();
            context.translate(width / 2, height / 2);
            context.scale(scale, scale);
            context.translate(-width / 2, -height / 2);
            const gradient = context.createRadialGradient(x, y, from, x, y, to);
            gradient.addColorStop(0, Look.faded(colour, colour.a * opacity));
            gradient.addColorStop(1, Look.faded(colour, 0));
            context.globalCompositeOperation = "qt-screen";
            context.fillStyle = gradient;
            context.fillRect(-width, -height, 3 * width, 3 * height);
            context.restore();
        }

        anchors.fill: parent
        renderStrategy: Canvas.Immediate
        onPaint: {
            const context = getContext("2d");
            const night = context.createLinearGradient(0, 0, width, height);
            night.addColorStop(0, Qt.rgba(0.04, 0.07, 0.14, 1));
            night.addColorStop(1, Qt.rgba(0.02, 0.04, 0.10, 1));
            context.fillStyle = night;
            context.fillRect(0, 0, width, height);
            glow(context, 0, 0, Qt.rgba(0.1, 0.2, 0.35, 0.65), 40, 420, isBright ? 1.08 : 1, isBright ? 0.9 : 0.7);
            glow(context, width, height, Qt.rgba(0.07, 0.28, 0.3, 0.6), 60, 520, isBright ? 1.05 : 1, isBright ? 0.85 : 0.6);
            farLayer.draw(context, width, height, 1);
            nearLayer.draw(context, width, height, isBright ? 0.8 : 0.6);
        }
        onWidthChanged: requestPaint()
        onHeightChanged: requestPaint()
    }

    Sky { isBright: false }
    Sky {
        isBright: true
        opacity: sky.phase
    }
}
