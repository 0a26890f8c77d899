import QtQuick

/// One of the program's symbols in one colour, drawn at exactly the pixels that it stands on: an even number of them,
/// so that it has the middle of what it is centred in, and no fewer than `size`.
Image {
    property string name
    property color color: "white"
    property real size: 16

    readonly property int pixels: 2 * Math.ceil(size * Screen.devicePixelRatio / 2)

    width: pixels / Screen.devicePixelRatio
    height: width
    sourceSize: Qt.size(pixels, pixels)
    source: name ? "image://symbol/" + name + "/" + Theme.faded(color, 1).toString().slice(1) : ""
    opacity: color.a
    smooth: true
    anchors.alignWhenCentered: false  // it counts in points
    cache: false  // drawn in a moment, and the cache keeps what nothing shows any more
}
