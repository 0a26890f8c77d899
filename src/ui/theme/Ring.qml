import QtQuick
import QtQuick.Shapes

/// A thin ring whose colour fades around it from nothing to `peak` and back.
Shape {
    id: ring

    property real diameter: 36
    property real lineWidth: 1
    property color color: "white"
    property real peak: 0.5

    readonly property real outer: diameter / 2
    readonly property real inner: outer - lineWidth

    width: diameter
    height: diameter

    ShapePath {
        strokeWidth: -1
        fillRule: ShapePath.OddEvenFill
        fillGradient: ConicalGradient {
            centerX: ring.outer
            centerY: ring.outer
            angle: 0
            GradientStop { position: 0; color: Theme.faded(ring.color, 0) }
            GradientStop { position: 0.5; color: Theme.faded(ring.color, ring.peak) }
            GradientStop { position: 1; color: Theme.faded(ring.color, 0) }
        }
        PathAngleArc {
            centerX: ring.outer; centerY: ring.outer
            radiusX: ring.outer; radiusY: ring.outer
            startAngle: 0; sweepAngle: 360
        }
        PathAngleArc {
            centerX: ring.outer; centerY: ring.outer
            radiusX: ring.inner; radiusY: ring.inner
            startAngle: 0; sweepAngle: 360
        }
    }
}
