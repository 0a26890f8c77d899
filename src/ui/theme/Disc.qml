import QtQuick
import QtQuick.Shapes

/// A disc, or a ring where it has only an outline. It is a shape and not a rectangle, whose corners are made of whole
/// pixels and grow with those.
Shape {
    id: disc

    property real diameter: 32
    property color color: "transparent"
    property ShapeGradient gradient: null   ///< in place of the colour
    property color outline: "transparent"
    property real lineWidth: 0              ///< of the outline, which lies within the diameter

    readonly property real middle: diameter / 2
    readonly property real radius: (diameter - lineWidth) / 2

    width: diameter
    height: diameter

    ShapePath {
        strokeWidth: disc.lineWidth > 0 ? disc.lineWidth : -1
        strokeColor: disc.outline
        fillColor: disc.color
        fillGradient: disc.gradient
        PathAngleArc {
            centerX: disc.middle; centerY: disc.middle
            radiusX: disc.radius; radiusY: disc.radius
            startAngle: 0; sweepAngle: 360
        }
    }
}
