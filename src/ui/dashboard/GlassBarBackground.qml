import QtQuick

/// The background of the top bar.
Rectangle {
    color: Look.white(0.04)
    EdgeBorder { edges: Qt.BottomEdge }
}
