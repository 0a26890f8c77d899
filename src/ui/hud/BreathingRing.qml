import QtQuick
import "qrc:/tavrelon/ui/theme"

/// A ring that breathes between two scales, and between two opacities where they differ.
Disc {
    property color tint: "white"
    property real breath: 0            ///< from 0 to 1
    property real smallest: 0.92
    property real largest: 1.06
    property real faintest: 0.45
    property real strongest: 0.45

    lineWidth: 1
    outline: tint
    opacity: faintest + (strongest - faintest) * breath
    scale: smallest + (largest - smallest) * breath
}
