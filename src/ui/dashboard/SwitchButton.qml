import QtQuick

/// A switch by itself. The owner writes `isOn` from its model and changes the model on `toggled`.
PressArea {
    id: button

    property bool isOn: false

    signal toggled(bool isOn)

    implicitWidth: toggle.width
    implicitHeight: toggle.height
    corner: toggle.radius
    onTriggered: toggled(!isOn)
    Accessible.role: Accessible.CheckBox
    Accessible.checkable: true
    Accessible.checked: isOn

    GlassToggle { id: toggle; isOn: button.isOn }
}
