import QtQuick

/// A choice of one among a few. `options` holds records of `value` and `label`; the owner writes `current` from its
/// model and changes the model on `chosen`.
Item {
    id: control

    property var options: []
    property string current
    property string name               ///< of the choice, for assistive technology

    signal chosen(string value)

    implicitWidth: 120 * options.length
    implicitHeight: Look.fieldHeight
    Accessible.role: Accessible.Grouping
    Accessible.name: name

    GlassFieldBackground { anchors.fill: parent }
    Row {
        anchors { fill: parent; margins: 3 }

        Repeater {
            model: control.options

            PressArea {
                id: segment

                required property var modelData
                readonly property bool isCurrent: modelData.value === control.current

                width: parent.width / control.options.length
                height: parent.height
                corner: Look.fieldCorner - 3
                name: modelData.label
                onTriggered: if (!isCurrent) control.chosen(modelData.value)
                Keys.onLeftPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
                Keys.onRightPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
                Accessible.role: Accessible.RadioButton
                Accessible.checkable: true
                Accessible.checked: isCurrent

                Rectangle {
                    anchors.fill: parent
                    radius: segment.corner
                    color: segment.isCurrent ? Look.accent : Look.white(segment.hovered ? 0.08 : 0)
                    Behavior on color { ColorAnimation { duration: Look.quick } }
                }
                Text {
                    anchors.centerIn: parent
                    text: segment.modelData.label
                    color: segment.isCurrent ? Look.accentInk : Look.secondary
                    font { family: Look.fontFamily; pixelSize: Look.bodySize; weight: Font.DemiBold }
                }
            }
        }
    }
}
