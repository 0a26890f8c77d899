import QtQuick
import QtQuick.Shapes

/// A pane of dark glass with a thin tinted outline and a soft shadow. Where no compositor runs it is opaque, fills its
/// parent and casts no shadow.
Item {
    id: glass

    property real radius: 20
    property color outline: "white"
    property real shadowRadius: 5
    property color shadowColor: "black"
    property real shadowOpacity: 0.12
    property real margin: surroundings.composited ? shadowRadius : 0

    /// The part of the window that is the pane, for its shape.
    readonly property rect maskRect: Qt.rect(margin, margin, width - 2 * margin, height - 2 * margin)
    readonly property real paneOpacity: surroundings.composited ? Theme.glassOpacity : 1
    readonly property real corner: Math.min(radius, height / 2 - margin)

    /// The path of a pane that is so much smaller than this item all around.
    function outlinePath(inset, corner) {
        const w = width - 2 * inset - 2 * corner;
        const h = height - 2 * inset - 2 * corner;
        const turn = (x, y) => `a${corner},${corner} 0 0 1 ${x},${y}`;
        return `M${inset + corner},${inset}h${w}${turn(corner, corner)}v${h}${turn(-corner, corner)}`
            + `h${-w}${turn(-corner, -corner)}v${-h}${turn(corner, -corner)}z`;
    }

    anchors.fill: parent

    Repeater {
        model: surroundings.composited ? Math.ceil(glass.shadowRadius) : 0

        Shape {
            id: shade

            required property int index
            readonly property real spread: index + 0.5

            anchors.fill: parent

            ShapePath {
                strokeWidth: 1
                strokeColor: Theme.faded(glass.shadowColor, glass.shadowOpacity * 1.6
                                         * Math.pow(1 - shade.index / glass.shadowRadius, 1.6))
                fillColor: "transparent"
                PathSvg { path: glass.outlinePath(glass.margin - shade.spread, glass.corner + shade.spread) }
            }
        }
    }

    // Under a shape that is cut by the pixel no corner may be half transparent.
    Rectangle {
        visible: !surroundings.composited
        anchors.fill: parent
        color: Theme.glassBottom
    }

    // A shape and not a rectangle: its corners are smooth.
    Shape {
        id: pane

        readonly property real edge: 0.5  // half of the outline

        anchors.fill: parent

        ShapePath {
            strokeWidth: 1
            strokeColor: glass.outline
            fillGradient: LinearGradient {
                x1: 0; y1: glass.margin; x2: 0; y2: pane.height - glass.margin
                GradientStop { position: 0; color: Theme.faded(Theme.glassTop, glass.paneOpacity) }
                GradientStop { position: 1; color: Theme.faded(Theme.glassBottom, glass.paneOpacity) }
            }
            PathSvg { path: glass.outlinePath(glass.margin + pane.edge, glass.corner - pane.edge) }
        }
    }

    // The light that falls on the upper edge.
    Rectangle {
        x: glass.margin + glass.radius
        y: glass.margin + 1
        width: glass.width - 2 * x
        height: 1
        gradient: Gradient {
            orientation: Gradient.Horizontal
            GradientStop { position: 0; color: "#00ffffff" }
            GradientStop { position: 0.5; color: "#38ffffff" }
            GradientStop { position: 1; color: "#00ffffff" }
        }
    }
}
