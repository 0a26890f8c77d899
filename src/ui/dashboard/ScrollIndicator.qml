import QtQuick

/// A bar along the right edge of `flickable` that shows where it stands and moves it.
Rectangle {
    id: indicator

    property Flickable flickable: parent
    readonly property real span: flickable.height - 12
    readonly property real share: flickable.visibleArea.heightRatio

    visible: share < 1
    anchors { right: flickable.right; rightMargin: 5 }
    y: flickable.y + 6 + Math.min(span * flickable.visibleArea.yPosition, span - height)
    width: 6
    height: Math.max(30, span * share)
    radius: 3
    color: Look.white(grip.containsMouse || grip.pressed ? 0.5 : 0.28)

    MouseArea {
        id: grip
        property real grabbedAt
        anchors { fill: parent; margins: -4 }
        hoverEnabled: true
        preventStealing: true  // by the drag that moves the window
        onPressed: mouse => grabbedAt = mapToItem(indicator.parent, 0, mouse.y).y - indicator.y
        onPositionChanged: mouse => {
            if (!pressed)
                return;
            const list = indicator.flickable;
            const share = (mapToItem(indicator.parent, 0, mouse.y).y - grabbedAt - list.y - 6) / indicator.span;
            const limit = Math.max(0, list.contentHeight - list.height);
            list.contentY = list.originY + Math.max(0, Math.min(share * list.contentHeight, limit));
        }
    }
}
