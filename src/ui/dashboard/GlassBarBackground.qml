import QtQuick

/// The background of the top bar.
Rectangle {
    color: "#a0111a2b"
    EdgeBorder { edges: Qt.BottomEdge }
}
