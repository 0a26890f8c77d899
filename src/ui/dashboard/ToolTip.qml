import QtQuick

/// A line of text that shows beside its target once `wanted` has held for a moment.
Loader {
    id: tip

    property string text
    property Item target: parent
    property bool wanted: false
    property bool isBeside: false      ///< to the right of the target rather than below

    active: false
    onWantedChanged: if (!wanted) active = false
    Timer {
        interval: 600
        running: tip.wanted && tip.text
        onTriggered: tip.active = true
    }

    sourceComponent: Rectangle {
        id: bubble

        function place() {
            const window = tip.Window.contentItem;
            parent = window;
            if (tip.isBeside) {
                const beside = tip.target.mapToItem(window, tip.target.width + 10, (tip.target.height - height) / 2);
                x = beside.x;
                y = Math.max(8, Math.min(beside.y, window.height - height - 8));
                return;
            }
            const below = tip.target.mapToItem(window, 0, tip.target.height + 6);
            x = Math.max(8, Math.min(below.x + (tip.target.width - width) / 2, window.width - width - 8));
            y = below.y + height + 8 <= window.height ? below.y : below.y - tip.target.height - height - 12;
        }

        Component.onCompleted: place()
        z: 1000
        width: label.width + 20
        height: label.height + 12
        radius: 7
        color: "#f0182236"
        border.width: 1
        border.color: Look.white(0.28)

        Text {
            id: label
            anchors.centerIn: parent
            text: tip.text
            color: Look.primary
            font { family: Look.fontFamily; pixelSize: Look.smallSize }
        }
    }
}
