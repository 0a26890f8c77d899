import QtQuick
import "qrc:/tavrelon/ui/theme"

/// The help sheet over the dashboard. Escape closes it, and Tab stays in it.
FocusScope {
    id: sheet

    required property QtObject model

    visible: model.showingHelp
    Connections {
        target: sheet.model
        function onShowingHelpChanged() {
            if (sheet.model.showingHelp)
                Qt.callLater(() => done.forceActiveFocus(Qt.PopupFocusReason));
        }
    }
    Keys.onEscapePressed: close()
    Accessible.role: Accessible.Dialog
    Accessible.name: model.texts.helpTitle

    function close() {
        model.showingHelp = false;
    }

    Rectangle {
        anchors.fill: parent
        color: Look.faded(Qt.color("black"), 0.45)
        MouseArea {
            anchors.fill: parent
            hoverEnabled: true
            onClicked: sheet.close()
            onWheel: wheel => wheel.accepted = true
        }
    }
    GlassPanel {
        anchors.centerIn: parent
        width: 480
        height: 440
        cornerRadius: 20

        MouseArea { anchors.fill: parent }
        Symbol {
            id: mark
            x: 24
            anchors.verticalCenter: title.verticalCenter
            name: "questionmark.circle.fill"
            size: 24
            color: Look.accent
        }
        Text {
            id: title
            anchors { left: mark.right; leftMargin: 10; right: closeButton.left; top: parent.top; topMargin: 22 }
            text: sheet.model.texts.helpTitle
            color: Look.primary
            elide: Text.ElideRight
            font { family: Look.fontFamily; pixelSize: 18; weight: Font.DemiBold }
        }
        PressArea {
            id: closeButton
            anchors { right: parent.right; rightMargin: 18; verticalCenter: title.verticalCenter }
            width: 30
            height: 30
            corner: 15
            name: sheet.model.texts.close
            onTriggered: sheet.close()
            KeyNavigation.tab: done
            KeyNavigation.backtab: done
            Symbol {
                anchors.centerIn: parent
                name: "xmark.circle.fill"
                size: 22
                color: closeButton.hovered ? Look.primary : Look.tertiary
            }
        }
        Flickable {
            id: flick
            anchors { left: parent.left; right: parent.right; top: title.bottom; topMargin: 16; bottom: done.top; bottomMargin: 14 }
            clip: true
            contentHeight: sections.height
            boundsBehavior: Flickable.StopAtBounds

            Column {
                id: sections
                x: 24
                width: flick.width - 48
                spacing: 18
                Repeater {
                    model: sheet.visible ? sheet.model.helpSections : []
                    HelpSection {
                        required property var modelData
                        title: modelData.title
                        items: modelData.items
                    }
                }
            }
        }
        Rectangle {
            visible: flick.contentHeight > flick.height
            anchors { right: parent.right; rightMargin: 6 }
            y: flick.y + flick.height * flick.visibleArea.yPosition
            width: 5
            height: flick.height * flick.visibleArea.heightRatio
            radius: 2.5
            color: Look.white(0.28)
        }
        GlassButton {
            id: done
            anchors { right: parent.right; rightMargin: 24; bottom: parent.bottom; bottomMargin: 20 }
            width: 96
            text: sheet.model.texts.done
            isProminent: true
            onTriggered: sheet.close()
            Keys.onDownPressed: flick.contentY = Math.min(flick.contentY + 40, Math.max(0, flick.contentHeight - flick.height))
            Keys.onUpPressed: flick.contentY = Math.max(0, flick.contentY - 40)
            KeyNavigation.tab: closeButton
            KeyNavigation.backtab: closeButton
        }
    }
}
