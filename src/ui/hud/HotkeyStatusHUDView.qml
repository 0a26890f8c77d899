import QtQuick
import "qrc:/tavrelon/ui/theme"

/// Says that all hotkeys were just switched on or off.
Item {
    id: view

    required property QtObject model
    readonly property color accent: model.isEnabled ? Theme.enabled : Theme.disabled
    readonly property rect maskRect: glass.maskRect
    readonly property real maskRadius: glass.radius
    property real pulse: 0
    property real glow: 0

    function start() {
        pulse = 0;
        glow = 0;
        animation.restart();
        if (!Theme.moves)
            animation.complete();
    }

    Component.onCompleted: start()
    Connections {
        target: view.model
        function onShown() { view.start(); }
    }
    ParallelAnimation {
        id: animation
        NumberAnimation { target: view; property: "pulse"; to: 1; duration: 180; easing.type: Easing.OutQuad }
        NumberAnimation { target: view; property: "glow"; to: 1; duration: 900; easing.type: Easing.OutQuad }
    }

    Glass {
        id: glass
        radius: 18
        margin: surroundings.composited ? 10 : 0
        shadowRadius: 6
        shadowColor: view.accent
        shadowOpacity: 0.3
        outline: Theme.faded(view.accent, 0.6 - 0.35 * view.glow)
    }
    Rectangle {
        anchors.fill: parent
        anchors.margins: glass.margin
        radius: glass.radius
        gradient: Gradient {
            GradientStop { position: 0; color: "#59000000" }
            GradientStop { position: 1; color: "#40000000" }
        }
    }

    Item {
        anchors.fill: parent
        anchors.margins: glass.margin + 1
        clip: true

        Disc {
            x: row.x + icon.x + icon.width / 2 - diameter / 2 - parent.x
            y: row.y + icon.y + icon.height / 2 - diameter / 2 - parent.y
            diameter: 120
            lineWidth: 2
            outline: view.accent
            scale: 0.85 + 0.3 * view.pulse
            opacity: 0.4 - 0.28 * view.pulse - 0.12 * view.glow  // the text before it is still read
        }
    }

    Row {
        id: row
        anchors.centerIn: parent
        spacing: 12

        Disc {
            id: icon
            anchors.verticalCenter: parent.verticalCenter
            diameter: 28
            color: Theme.faded(view.accent, 0.18)
            lineWidth: 1
            outline: view.accent

            Symbol {
                anchors.centerIn: parent
                name: view.model.symbol
                color: view.accent
            }
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: view.model.text
            color: Theme.faded(Qt.color("white"), 0.95)
            font.pixelSize: 14
            font.weight: Font.DemiBold
        }
    }
}
