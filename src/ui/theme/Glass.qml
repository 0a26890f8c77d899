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

    anchors.fill: parent

    Repeater {
        model: surroundings.composited ? Math.ceil(glass.shadowRadius) : 0

        Rectangle {
            required property int index
            readonly property real spread: index + 1

            anchors.fill: pane
            anchors.margins: -spread
            radius: glass.radius + spread
            color: "transparent"
            border.width: 1
            border.color: Theme.faded(glass.shadowColor,
                                      glass.shadowOpacity * 1.6 * Math.pow(1 - index / glass.shadowRadius, 1.6))
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
        readonly property real corner: Math.min(glass.radius, height / 2) - edge

        anchors.fill: parent
        anchors.margins: glass.margin

        ShapePath {
            strokeWidth: 1
            strokeColor: glass.outline
            fillGradient: LinearGradient {
                x1: 0; y1: 0; x2: 0; y2: pane.height
                GradientStop { position: 0; color: Theme.faded(Theme.glassTop, glass.paneOpacity) }
                GradientStop { position: 1; color: Theme.faded(Theme.glassBottom, glass.paneOpacity) }
            }
            startX: pane.edge + pane.corner
            startY: pane.edge
            PathLine { relativeX: pane.width - 2 * (pane.edge + pane.corner); relativeY: 0 }
            PathArc { relativeX: pane.corner; relativeY: pane.corner; radiusX: pane.corner; radiusY: pane.corner }
            PathLine { relativeX: 0; relativeY: pane.height - 2 * (pane.edge + pane.corner) }
            PathArc { relativeX: -pane.corner; relativeY: pane.corner; radiusX: pane.corner; radiusY: pane.corner }
            PathLine { relativeX: -(pane.width - 2 * (pane.edge + pane.corner)); relativeY: 0 }
            PathArc { relativeX: -pane.corner; relativeY: -pane.corner; radiusX: pane.corner; radiusY: pane.corner }
            PathLine { relativeX: 0; relativeY: -(pane.height - 2 * (pane.edge + pane.corner)) }
            PathArc { relativeX: pane.corner; relativeY: -pane.corner; radiusX: pane.corner; radiusY: pane.corner }
        }
    }

    // The light that falls on the upper edge.
    Rectangle {
        anchors { left: pane.left; right: pane.right; top: pane.top; leftMargin: glass.radius; rightMargin: glass.radius; topMargin: 1 }
        height: 1
        gradient: Gradient {
            orientation: Gradient.Horizontal
            GradientStop { position: 0; color: "#00ffffff" }
            GradientStop { position: 0.5; color: "#38ffffff" }
            GradientStop { position: 1; color: "#00ffffff" }
        }
    }
}
