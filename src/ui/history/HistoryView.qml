import QtQuick
import "qrc:/tavrelon/ui/theme"
import "qrc:/tavrelon/ui/dashboard"

/// The page of the history: the applications on the left, the conversation of the chosen one on the right.
Item {
    id: page

    required property QtObject model
    readonly property var texts: model.texts

    Rectangle {
        id: side
        width: 256
        anchors { left: parent.left; top: parent.top; bottom: parent.bottom }
        color: Look.faded(Look.night, 0.6)
        EdgeBorder { edges: Qt.RightEdge }

        GlassTextField {
            id: search
            anchors { left: parent.left; right: parent.right; top: parent.top; margins: 16; leftMargin: Look.margin }
            icon: "magnifyingglass"
            name: page.texts.search
            placeholder: page.texts.search
            text: page.model.searchText
            onEdited: text => page.model.searchText = text
        }
        ListView {
            id: list
            anchors { left: parent.left; right: parent.right; top: search.bottom; bottom: clear.top; topMargin: 10; bottomMargin: 10 }
            clip: true
            spacing: 4
            boundsBehavior: Flickable.StopAtBounds
            model: page.model.groups
            Accessible.role: Accessible.List
            Accessible.name: page.texts.applications
            delegate: HistoryAppRow {
                x: Look.margin - padding
                width: list.width - 2 * x
                isSelected: appId === page.model.selectedAppID
                onTriggered: page.model.selectedAppID = appId
                onActiveFocusChanged: if (activeFocus) list.positionViewAtIndex(index, ListView.Contain)
                required property int index
            }
        }
        ScrollIndicator { flickable: list; anchors.rightMargin: 2 }
        HistoryEmpty {
            visible: page.model.isEmpty
            anchors.centerIn: list
            text: page.texts.noHistory
        }
        GlassButton {
            id: clear
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom; margins: 16; leftMargin: Look.margin }
            icon: "trash"
            tint: Look.warning
            text: page.texts.clearAll
            onTriggered: page.model.clear()
        }
    }
    HistoryConversationView {
        visible: page.model.hasConversation
        anchors { left: side.right; right: parent.right; top: parent.top; bottom: parent.bottom }
        model: page.model
    }
    HistoryEmpty {
        visible: !page.model.hasConversation
        anchors { horizontalCenter: parent.horizontalCenter; horizontalCenterOffset: side.width / 2; verticalCenter: parent.verticalCenter }
        text: page.texts.chooseApplication
    }
}
