import QtQuick

/// The background of the sidebar.
Rectangle {
    color: "#c0131b2c"
    EdgeBorder { edges: Qt.RightEdge }
}
