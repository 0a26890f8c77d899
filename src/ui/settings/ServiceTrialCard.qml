import QtQuick
import "qrc:/tavrelon/ui/theme"
import "qrc:/tavrelon/ui/dashboard"

/// Asks the chosen service one short question, and shows the answer or the reason and the time it took.
GlassCard {
    id: card

    required property QtObject trial
    required property var texts

    width: parent ? parent.width : implicitWidth
    spacing: 10

    Item {
        width: parent.width
        height: Look.fieldHeight

        Text {
            anchors { left: parent.left; right: button.left; rightMargin: 12; verticalCenter: parent.verticalCenter }
            text: card.texts.testHint
            color: Look.secondary
            elide: Text.ElideRight
            font { family: Look.fontFamily; pixelSize: Look.smallSize }
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        LearnButton {
            id: button
            anchors.right: parent.right
            text: card.texts.test
            busyText: card.texts.testing
            isBusy: card.trial.isBusy
            onTriggered: card.trial.start()
        }
    }
    MessageLine {
        text: !card.trial.outcome ? "" : card.trial.hasFailed ? card.trial.outcome + " (" + card.trial.seconds + " s)"
            : card.texts.testAnswer.arg(card.trial.source).arg(card.trial.seconds).arg(card.trial.outcome)
        tint: card.trial.hasFailed ? Theme.red : Theme.green
        icon: card.trial.hasFailed ? "exclamationmark.triangle.fill" : "checkmark"
    }
}
