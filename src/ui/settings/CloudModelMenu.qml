import QtQuick
import "qrc:/tavrelon/ui/theme"
import "qrc:/tavrelon/ui/dashboard"

/// The menu of models, over the whole window; a press outside closes it.
FocusScope {
    id: menu

    required property QtObject models
    required property var texts
    required property Item target
    property string current
    property string typed

    signal chosen(string name)
    signal closed

    function jumpTo(letters) {
        const found = models.find(letters, list.currentIndex < 0 ? 0 : list.currentIndex);
        if (found >= 0)
            list.currentIndex = found;
    }

    Component.onCompleted: {
        const window = target.Window.contentItem;
        parent = window;
        const below = target.mapToItem(window, 0, target.height + 4);
        panel.x = below.x;
        panel.width = target.width;
        const room = window.height - below.y - 8;
        panel.y = Qt.binding(() => panel.height <= room ? below.y : Math.max(8, below.y - target.height - 8 - panel.height));
        list.currentIndex = models.names.indexOf(current);
        list.positionViewAtIndex(Math.max(0, list.currentIndex - 3), ListView.Beginning);
        forceActiveFocus(Qt.PopupFocusReason);
    }

    anchors.fill: parent
    z: 900
    Keys.onEscapePressed: closed()
    Keys.onTabPressed: closed()
    Keys.onBacktabPressed: closed()
    Keys.onReturnPressed: if (list.currentIndex >= 0) chosen(models.names[list.currentIndex]); else closed()
    Keys.onEnterPressed: if (list.currentIndex >= 0) chosen(models.names[list.currentIndex]); else closed()
    Keys.onPressed: event => {
        const last = list.count - 1;
        const page = Math.max(1, Math.floor(list.height / 32) - 1);
        const goal = ({
            [Qt.Key_Up]: list.currentIndex - 1, [Qt.Key_Down]: list.currentIndex + 1,
            [Qt.Key_PageUp]: list.currentIndex - page, [Qt.Key_PageDown]: list.currentIndex + page,
            [Qt.Key_Home]: 0, [Qt.Key_End]: last
        })[event.key];
        if (goal !== undefined && last >= 0) {
            list.currentIndex = Math.max(0, Math.min(goal, last));
        } else if (event.text && event.text >= " ") {
            menu.typed += event.text;
            forget.restart();
            menu.jumpTo(menu.typed);
        } else {
            return;
        }
        event.accepted = true;
    }

    Timer { id: forget; interval: 1000; onTriggered: menu.typed = "" }
    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
        onClicked: menu.closed()
        onWheel: wheel => wheel.accepted = true
    }
    GlassPanel {
        id: panel
        height: list.count ? Math.min(list.count, 8) * 32 + 12 : 44
        cornerRadius: 11

        Text {
            visible: list.count === 0
            anchors { left: parent.left; leftMargin: 16; verticalCenter: parent.verticalCenter }
            text: menu.models.isLoading ? menu.texts.loadingModels : menu.texts.noModels
            color: Look.tertiary
            font { family: Look.fontFamily; pixelSize: Look.bodySize }
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        ListView {
            id: list
            anchors { fill: parent; margins: 6 }
            clip: true
            boundsBehavior: Flickable.StopAtBounds
            highlightMoveDuration: 0
            model: menu.models.names
            Accessible.role: Accessible.List
            Accessible.name: menu.texts.model
            delegate: Rectangle {
                id: row

                required property int index
                required property string modelData

                width: list.width
                height: 32
                radius: 7
                color: ListView.isCurrentItem ? Look.faded(Look.accent, 0.22) : Look.white(mouse.containsMouse ? 0.09 : 0)
                Accessible.role: Accessible.ListItem
                Accessible.name: modelData
                Accessible.selected: modelData === menu.current
                Accessible.onPressAction: menu.chosen(modelData)

                Text {
                    anchors { left: parent.left; leftMargin: 10; right: tick.left; rightMargin: 6; verticalCenter: parent.verticalCenter }
                    text: row.modelData
                    textFormat: Text.PlainText
                    elide: Text.ElideRight
                    color: Look.primary
                    font { family: Look.fontFamily; pixelSize: Look.bodySize }
                }
                Symbol {
                    id: tick
                    anchors { right: parent.right; rightMargin: 14; verticalCenter: parent.verticalCenter }
                    visible: row.modelData === menu.current
                    name: "checkmark"
                    size: 12
                    color: Look.accent
                }
                MouseArea {
                    id: mouse
                    anchors.fill: parent
                    hoverEnabled: true
                    onClicked: menu.chosen(row.modelData)
                }
            }
        }
        ScrollIndicator { flickable: list }
    }
}
