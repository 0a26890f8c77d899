import QtQuick

/// The background of the sidebar.
Rectangle {
    color: Look.white(0.05)
    EdgeBorder { edges: Qt.RightEdge }
}
