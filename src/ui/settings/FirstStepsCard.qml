import QtQuick
import "qrc:/tavrelon/ui/theme"
import "qrc:/tavrelon/ui/dashboard"

/// For a new user: who answers, what to press, and a field to try it in.
Column {
    id: card

    required property QtObject steps
    readonly property var texts: steps.texts
    readonly property bool hasChosen: !steps.found.isNothingChosen

    width: parent ? parent.width : implicitWidth
    spacing: Look.gap

    GlassCard {
        width: parent.width
        spacing: 12

        Item {
            width: parent.width
            height: Math.max(head.height, look.visible ? look.height : 0)

            SectionHeader {
                id: head
                width: parent.width - (look.visible ? look.width + 16 : 0)
                title: card.texts.title
                subtitle: card.steps.hasAnswered ? card.texts.done
                    : card.hasChosen ? card.texts.how.arg(card.steps.keyName)
                    : card.steps.found.servers.length > 0 ? card.texts.take : card.texts.choose
            }
            GlassButton {
                id: look
                visible: !card.hasChosen
                anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                text: card.texts.look
                onTriggered: card.steps.found.look()
            }
        }
        Item {
            visible: card.hasChosen
            width: parent.width
            height: 76

            GlassFieldBackground { anchors.fill: parent; isActive: input.activeFocus }
            FocusRing { target: input }
            Text {
                anchors.fill: input
                visible: input.length === 0 && input.preeditText.length === 0
                text: card.texts.tryHere.arg(card.steps.keyName)
                color: Look.tertiary
                wrapMode: Text.Wrap
                font: input.font
            }
            TextEdit {
                id: input
                anchors { fill: parent; margins: 10 }
                clip: true
                activeFocusOnTab: true
                textFormat: TextEdit.PlainText
                wrapMode: TextEdit.Wrap
                selectByMouse: true
                color: Look.primary
                selectionColor: Look.faded(Look.blue, 0.7)
                selectedTextColor: "white"
                font { family: Look.fontFamily; pixelSize: Look.bodySize }
                Keys.onTabPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
                Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
                Accessible.role: Accessible.EditableText
                Accessible.name: card.texts.tryName
                Accessible.multiLine: true
            }
        }
    }
    FoundServersCard {
        visible: !card.hasChosen && found.servers.length > 0
        found: card.steps.found
    }
}
