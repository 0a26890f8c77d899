import QtQuick
import "qrc:/tavrelon/ui/dashboard"

/// One hotkey: its switch, its key cap, and for a voice hotkey its silence time-out.
Item {
    id: card

    required property QtObject hotkeys   ///< the model of the page
    required property int index
    readonly property var texts: hotkeys.texts
    readonly property var row: hotkeys.rows[index]

    implicitHeight: face.height + (warning.visible ? warning.height + 12 : 0)

    GlassCardBackground { anchors.fill: parent }
    Item {
        id: face
        width: parent.width
        height: 66

        Column {
            anchors {
                left: parent.left; leftMargin: Look.padding
                right: controls.left; rightMargin: 12
                verticalCenter: parent.verticalCenter
            }
            spacing: 2
            opacity: card.row.isLive ? 1 : 0.55

            Text {
                width: parent.width
                text: card.row.title
                color: Look.primary
                elide: Text.ElideRight
                font { family: Look.fontFamily; pixelSize: Look.bodySize; weight: Font.DemiBold }
            }
            Text {
                width: parent.width
                text: card.row.subtitle
                color: Look.secondary
                elide: Text.ElideRight
                font { family: Look.fontFamily; pixelSize: Look.smallSize }
            }
        }
        Row {
            id: controls
            anchors { right: parent.right; rightMargin: Look.padding; verticalCenter: parent.verticalCenter }
            spacing: 16

            LabeledNumberField {
                visible: card.row.timeout
                anchors.verticalCenter: parent.verticalCenter
                label: card.texts.timeout
                name: card.row.title + ": " + card.texts.timeout
                placeholder: "2"
                suffix: card.texts.timeoutUnit
                toolTip: card.texts.timeoutTip
                fieldWidth: 70
                value: card.row.timeout
                onCommitted: text => card.hotkeys.setTimeout(card.index, text)
            }
            HotkeyRecorder {
                anchors.verticalCenter: parent.verticalCenter
                name: card.row.title
                key: card.row.key
                keyName: card.row.keyName
                hint: card.row.subtitle
                canRecord: card.row.canRecord
                isRecording: card.row.isRecording
                onTriggered: card.hotkeys.toggleRecording(card.index)
            }
            SwitchButton {
                anchors.verticalCenter: parent.verticalCenter
                name: card.row.title
                isOn: card.row.isEnabled
                Accessible.description: card.row.subtitle
                onToggled: isOn => card.hotkeys.setEnabled(card.index, isOn)
            }
        }
    }
    MessageLine {
        id: warning
        x: Look.padding
        y: face.height
        width: card.width - 2 * Look.padding
        text: card.row.warning
        tint: Look.warning
    }
}
