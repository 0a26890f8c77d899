import QtQuick
import "qrc:/tavrelon/ui/dashboard"

/// The requests made in one application, as a conversation. The rows of the list are pieces of turns: only what is in
/// sight is laid out, however long a message is.
Item {
    id: view

    required property QtObject model

    Column {
        id: header
        anchors { left: parent.left; right: parent.right; top: parent.top; leftMargin: 20; rightMargin: 20; topMargin: 16 }
        spacing: 2

        Text {
            width: parent.width
            text: view.model.conversationName
            textFormat: Text.PlainText
            elide: Text.ElideRight
            maximumLineCount: 1
            color: Look.primary
            font { family: Look.fontFamily; pixelSize: Look.titleSize; weight: Font.DemiBold }
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        Text {
            text: view.model.conversationCount
            color: Look.secondary
            font { family: Look.fontFamily; pixelSize: Look.smallSize }
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
    Rectangle {
        id: line
        anchors { left: parent.left; right: parent.right; top: header.bottom; topMargin: 12 }
        height: 1
        color: Look.white(0.12)
    }
    ListView {
        id: list
        objectName: "conversation"
        anchors { left: parent.left; right: parent.right; top: line.bottom; bottom: parent.bottom }
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        footer: Item { width: 1; height: 20 }
        model: view.model.conversation
        activeFocusOnTab: true
        keyNavigationEnabled: false
        Accessible.role: Accessible.List
        Accessible.name: view.model.conversationName
        Keys.onPressed: event => {
            const step = ({
                [Qt.Key_Up]: -60, [Qt.Key_Down]: 60, [Qt.Key_PageUp]: 40 - height, [Qt.Key_PageDown]: height - 40
            })[event.key];
            if (step !== undefined) {
                contentY = Math.max(originY, Math.min(contentY + step, originY + contentHeight - height));
            } else if (event.key === Qt.Key_Home) {
                positionViewAtBeginning();
            } else if (event.key === Qt.Key_End) {
                positionViewAtEnd();
            } else {
                return;
            }
            event.accepted = true;
        }

        delegate: Item {
            id: row

            required property int index
            required property string kind
            required property string time
            required property var badges
            required property string role
            required property string label
            required property bool isFirst
            required property bool isLast
            required property string pieceText
            required property url imageSource
            required property size imagePixels
            readonly property bool isHead: kind === "turnHead"

            width: list.width
            height: content.y + content.height

            Loader {
                id: content
                x: 20
                y: row.isHead ? 18 : row.isFirst ? 8 : 0
                width: parent.width - 40
                sourceComponent: row.isHead ? head : bubble
            }
            Component {
                id: head
                HistoryConversationTurn { time: row.time; badges: row.badges }
            }
            Component {
                id: bubble
                HistoryMessageBubble {
                    text: row.pieceText
                    role: row.role
                    label: row.label
                    isFirst: row.isFirst
                    isLast: row.isLast
                    imageSource: row.imageSource
                    imagePixels: row.imagePixels
                }
            }
        }
    }
    ScrollIndicator { flickable: list }
    FocusRing { target: list; anchors.fill: list; anchors.margins: 2; corner: 8 }
}
