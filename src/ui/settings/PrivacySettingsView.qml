import QtQuick
import "qrc:/tavrelon/ui/dashboard"

/// The page of permissions.
ScrollPage {
    id: page

    required property QtObject model
    readonly property var texts: model.texts
    readonly property var cards: model.cards

    title: texts.title

    Connections {
        target: page.Window.window
        function onActiveChanged() {
            // The user may come back from the desktop's own settings.
            if (page.Window.active)
                page.model.refresh();
        }
    }

    Repeater {
        model: page.cards.length
        PermissionCard {
            required property int index
            readonly property var card: page.cards[index]
            width: parent.width
            title: card.title
            description: card.description
            icon: card.icon
            isGranted: card.isGranted
            texts: page.texts
            onAllow: page.model.allow(index)
        }
    }

    GlassCard {
        visible: page.model.services.length > 0
        width: parent.width

        Text {
            text: page.texts.services
            color: Look.primary
            font { family: Look.fontFamily; pixelSize: Look.bodySize; weight: Font.DemiBold }
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        Text {
            width: parent.width
            text: page.texts.servicesDetail
            color: Look.secondary
            wrapMode: Text.Wrap
            font { family: Look.fontFamily; pixelSize: Look.smallSize }
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        Repeater {
            model: page.model.services
            Item {
                id: service
                required property var modelData
                width: parent.width
                height: Look.fieldHeight

                Text {
                    anchors {
                        left: parent.left; right: forget.left; rightMargin: 12; verticalCenter: parent.verticalCenter
                    }
                    text: service.modelData.name + "  ·  " + service.modelData.detail
                    textFormat: Text.PlainText
                    color: Look.primary
                    elide: Text.ElideMiddle
                    font { family: Look.fontFamily; pixelSize: Look.smallSize }
                    Accessible.role: Accessible.StaticText
                    Accessible.name: text
                }
                GlassButton {
                    id: forget
                    anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                    text: page.texts.forget
                    Accessible.description: service.modelData.name
                    onTriggered: page.model.forget(service.modelData.origin)
                }
            }
        }
    }
}
