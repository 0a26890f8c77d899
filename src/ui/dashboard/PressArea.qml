import QtQuick

/// What all buttons are: something to press by mouse, Space or Return, with a name for those who cannot see it.
FocusScope {
    id: control

    property string name             ///< for assistive technology
    property string toolTip
    property bool toolTipBeside: false
    property real corner: Look.fieldCorner
    property bool isAvailable: true  ///< false dims it and takes it out of use
    readonly property bool hovered: mouse.containsMouse
    readonly property bool pressed: mouse.pressed && mouse.containsMouse
    property bool focusedByMouse: false   ///< then the focus needs no ring

    signal triggered

    enabled: isAvailable
    activeFocusOnTab: isAvailable
    opacity: isAvailable ? 1 : 0.45

    Accessible.role: Accessible.Button
    Accessible.name: name
    Accessible.description: toolTip === name ? "" : toolTip
    Accessible.focusable: true
    Accessible.focused: activeFocus
    Accessible.onPressAction: if (enabled) triggered()
    Accessible.onToggleAction: if (enabled) triggered()
    onActiveFocusChanged: if (!activeFocus) focusedByMouse = false
    Keys.onPressed: event => {
        focusedByMouse = false;
        event.accepted = false;
    }
    Keys.onSpacePressed: triggered()
    Keys.onReturnPressed: triggered()
    Keys.onEnterPressed: triggered()

    MouseArea {
        id: mouse
        anchors.fill: parent
        z: 2
        hoverEnabled: true
        cursorShape: Qt.PointingHandCursor
        onPressed: {
            control.forceActiveFocus(Qt.MouseFocusReason);  // a field that was being typed in hands its text on
            control.focusedByMouse = true;
        }
        onClicked: control.triggered()
    }
    FocusRing { corner: control.corner; target: control; wanted: !control.focusedByMouse }
    ToolTip { text: control.toolTip; target: control; wanted: control.hovered && !control.pressed; isBeside: control.toolTipBeside }
}
