pragma Singleton

import QtQuick

/// The palette and the measures that all views share.
QtObject {
    readonly property color grey: "#9aa0ab"
    readonly property color blue: "#4d9dff"
    readonly property color orange: "#ff9f45"
    readonly property color red: "#ff5d5d"
    readonly property color purple: "#b07bff"
    readonly property color green: "#43d68a"
    readonly property color cyan: "#48d7ee"
    readonly property color enabled: Qt.rgba(0.35, 0.9, 0.7, 1)
    readonly property color disabled: Qt.rgba(0.95, 0.5, 0.45, 1)

    readonly property color primary: "#f4f5f8"
    readonly property color secondary: "#b4bbc8"
    readonly property color placeholder: "#c6ccd6"

    // Glass without a blur behind it: so dark that no word of the page is read through it, and a white page leaves every
    // text at least 4.5:1.
    readonly property color glassTop: "#3a3e4a"
    readonly property color glassBottom: "#22252e"
    readonly property real glassOpacity: 0.98

    /// Whether anything may move. All that moves asks here, since the user may have told the session to keep still.
    readonly property bool moves: !motion.isReduced

    function tint(name) {
        return this[name];
    }

    function faded(color, opacity) {
        return Qt.rgba(color.r, color.g, color.b, opacity);
    }

    function mixed(color, other, share) {
        return Qt.rgba(color.r + (other.r - color.r) * share, color.g + (other.g - color.g) * share,
                       color.b + (other.b - color.b) * share, 1);
    }
}
