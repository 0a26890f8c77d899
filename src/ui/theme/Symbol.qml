import QtQuick

/// One of the program's symbols in one colour, drawn at exactly the pixels that it stands on.
Image {
    property string name
    property color color: "white"
    property real size: 16

    width: size
    height: size
    sourceSize: Qt.size(size * Screen.devicePixelRatio, size * Screen.devicePixelRatio)
    source: name ? "image://symbol/" + name + "/" + Theme.faded(color, 1).toString().slice(1) : ""
    opacity: color.a
    smooth: true
    cache: false  // drawn in a moment, and the cache keeps what nothing shows any more
}
