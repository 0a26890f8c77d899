import QtQuick
import "qrc:/tavrelon/ui/theme"

/// The dashboard: the sidebar, the top bar, and the page of the selected tab on a night sky.
Item {
    id: view

    required property QtObject model
    readonly property var texts: model.texts

    StarfieldBackground {
        anchors.fill: parent
        isAnimating: view.Window.active && view.Window.visibility !== Window.Minimized
        farStars: view.model.farStars()
        nearStars: view.model.nearStars()
    }
    DragHandler {
        target: null
        onActiveChanged: if (active) view.Window.window.startSystemMove()
    }

    Item {
        id: shell
        anchors.fill: parent
        enabled: !view.model.showingHelp

        GlassSidebarBackground {
            id: sidebar
            width: 88
            anchors { top: parent.top; bottom: parent.bottom }

            Column {
                id: mark
                y: 20
                width: parent.width
                spacing: 4

                Symbol {
                    anchors.horizontalCenter: parent.horizontalCenter
                    name: "bolt.fill"
                    size: 28
                    color: Look.accent
                }
                Text {
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: view.texts.name
                    color: Look.primary
                    font { family: Look.fontFamily; pixelSize: Look.bodySize; weight: Font.DemiBold }
                }
                Row {
                    anchors.horizontalCenter: parent.horizontalCenter
                    spacing: 5
                    Disc {
                        anchors.verticalCenter: parent.verticalCenter
                        diameter: 6
                        color: view.model.isActive ? Look.accent : Look.warning
                    }
                    Text {
                        Accessible.role: Accessible.StaticText
                        Accessible.name: view.texts.name + ": " + text
                        text: view.model.state
                        color: Look.secondary
                        font { family: Look.fontFamily; pixelSize: Look.smallSize }
                    }
                }
            }
            Column {
                id: tabs
                readonly property real room: sidebar.height - mark.y - mark.height - foot.height - 44
                anchors { top: mark.bottom; topMargin: 20; horizontalCenter: parent.horizontalCenter }
                spacing: 6
                Accessible.role: Accessible.PageTabList
                Accessible.name: view.texts.name

                Repeater {
                    model: view.model.tabs.length
                    SidebarButton {
                        required property int index
                        readonly property var tab: view.model.tabs[index]
                        height: Math.min(48, tabs.room / view.model.tabs.length - tabs.spacing)
                        icon: tab.symbol
                        name: tab.name
                        isSelected: view.model.selection === index
                        onTriggered: view.model.selection = index
                    }
                }
            }
            Column {
                id: foot
                anchors { bottom: parent.bottom; bottomMargin: 12; horizontalCenter: parent.horizontalCenter }
                spacing: 4

                SidebarButton {
                    id: help
                    anchors.horizontalCenter: parent.horizontalCenter
                    height: 40
                    icon: "questionmark.circle.fill"
                    name: view.texts.help
                    Accessible.role: Accessible.Button
                    onTriggered: view.model.showingHelp = true
                }
                PressArea {
                    id: donate
                    visible: view.model.canDonate
                    width: 64
                    height: 46
                    corner: 12
                    name: view.texts.donate
                    toolTip: view.texts.donateTip
                    toolTipBeside: true
                    onTriggered: view.model.donate()

                    Rectangle {
                        anchors.fill: parent
                        radius: donate.corner
                        color: Look.white(donate.hovered ? 0.1 : 0)
                    }
                    Column {
                        anchors.centerIn: parent
                        spacing: 2
                        Symbol {
                            anchors.horizontalCenter: parent.horizontalCenter
                            name: "heart.fill"
                            size: 18
                            color: Look.warning
                        }
                        Text {
                            anchors.horizontalCenter: parent.horizontalCenter
                            text: view.texts.donate
                            color: Look.secondary
                            font { family: Look.fontFamily; pixelSize: Look.smallSize }
                        }
                    }
                }
            }
        }
        GlassBarBackground {
            id: bar
            height: 60
            anchors { left: sidebar.right; right: parent.right }

            Text {
                visible: !page.item?.title  // which says it itself
                anchors { left: parent.left; leftMargin: Look.margin; verticalCenter: parent.verticalCenter }
                text: view.model.tabs[view.model.selection]?.name ?? ""
                color: Look.primary
                font { family: Look.fontFamily; pixelSize: Look.titleSize; weight: Font.DemiBold }
                Accessible.role: Accessible.Heading
                Accessible.name: text
            }
            GlassButton {
                id: chip
                anchors { right: parent.right; rightMargin: Look.margin; verticalCenter: parent.verticalCenter }
                icon: "globe"
                text: view.texts.language
                toolTip: view.texts.languageTip
                onTriggered: view.model.switchLanguage()
            }
        }
        Loader {
            id: page
            anchors { left: sidebar.right; right: parent.right; top: bar.bottom; bottom: undoBars.top }

            function open() {
                setSource(view.model.pageView, { model: view.model.pageModel });
            }

            Component.onCompleted: open()
            Connections {
                target: view.model
                function onSelectionChanged() { page.open(); }
            }
        }
        // Over every page: what was done on one of them can be taken back from each.
        Column {
            id: undoBars
            anchors { left: sidebar.right; right: parent.right; bottom: parent.bottom }

            Repeater {
                model: view.model.undoOffers
                UndoBar {
                    required property var modelData
                    text: modelData.text
                    undoText: view.texts.undo
                    undoTip: view.texts.undoTip
                    onUndone: view.model.undo(modelData.what)
                    // A bar that goes gives the keyboard back to the page.
                    Component.onDestruction: if (activeFocus) page.forceActiveFocus(Qt.OtherFocusReason)
                }
            }
        }
        Shortcut {
            sequences: [StandardKey.Undo]
            enabled: shell.enabled && view.model.undoOffers.length > 0
            onActivated: view.model.undoLast()
        }
    }
    Connections {
        target: view.model
        function onShowingHelpChanged() {
            if (!view.model.showingHelp)
                help.forceActiveFocus(Qt.PopupFocusReason);
        }
    }
    HelpModalView {
        anchors.fill: parent
        model: view.model
    }
}
