import QtQuick
import "qrc:/tavrelon/ui/theme"
import "qrc:/tavrelon/ui/dashboard"

/// The chosen model, and the menu of all models under it. Keys move in the menu, letters jump to a name.
PressArea {
    id: picker

    required property QtObject models
    required property var texts
    property string current

    signal chosen(string name)

    implicitHeight: Look.fieldHeight
    name: texts.model + ": " + (current ? current : texts.selectModel)
    Accessible.role: Accessible.ComboBox
    Keys.onDownPressed: triggered()
    onTriggered: menu.active = true
    onVisibleChanged: menu.active = false

    GlassFieldBackground { anchors.fill: parent; isActive: picker.hovered || menu.active }
    Text {
        anchors { left: parent.left; leftMargin: 11; right: chevron.left; rightMargin: 8; verticalCenter: parent.verticalCenter }
        text: picker.current ? picker.current : picker.texts.selectModel
        textFormat: Text.PlainText
        color: picker.current ? Look.primary : Look.tertiary
        elide: Text.ElideRight
        font { family: Look.fontFamily; pixelSize: Look.bodySize }
    }
    Symbol {
        id: chevron
        anchors { right: parent.right; rightMargin: 11; verticalCenter: parent.verticalCenter }
        name: "chevron.down"
        size: 13
        color: Look.secondary
    }

    Loader {
        id: menu
        active: false
        sourceComponent: CloudModelMenu {
            models: picker.models
            texts: picker.texts
            current: picker.current
            target: picker
            onChosen: name => {
                closed();
                picker.chosen(name);
            }
            onClosed: {
                menu.active = false;
                picker.forceActiveFocus(Qt.PopupFocusReason);
            }
        }
    }
}
